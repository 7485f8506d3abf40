#pragma once

#include "LibraryTest.h"

namespace librarytest {

/// A coded entry of the current generation that concerns no unit and no device.
inline LogbookEntry codedEntry(const Code& code, const std::string& params = "") {
    LogbookEntry entry;
    entry.type = code.type();
    entry.code = code.id();
    entry.details = {-1, -1, params, Generation::Heron};
    return entry;
}

/// An entry of the first generation that concerns no unit and no device; its code plays no part.
inline LogbookEntry kestrelEntry(const std::string& params) {
    LogbookEntry entry = codedEntry(error(282), params);
    entry.details.generation = Generation::Kestrel;
    return entry;
}

/// The same entry, concerning a device and a unit.
inline LogbookEntry on(std::int64_t device, std::int64_t unit, LogbookEntry entry) {
    entry.details.device = device;
    entry.details.unit = unit;
    return entry;
}

/// What one kind of description creator makes of an entry.
template <typename Creator>
class DescriptionTest : public LibraryTest {
protected:
    /// What the entry is described as when it is to be shown.
    std::string shown(LogbookEntry entry) {
        EXPECT_TRUE(creator.create(entry));
        return entry.description;
    }

    /// What is left in an entry that is not to be shown.
    std::string dropped(LogbookEntry entry) {
        EXPECT_FALSE(creator.create(entry));
        return entry.description;
    }

    Creator creator;
};

}  // namespace librarytest
