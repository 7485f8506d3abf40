#pragma once

#include "RecordingPlatform.h"

#include <lgb/Code.h>
#include <nsa/zel/enums/Generation.h>
#include <nsa/zel/enums/LogbookEntryType.h>
#include <nsa/zel/structs/LogbookEntry.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// The language of the library's tests.
namespace librarytest {

namespace enums = tqbase2::nsa::zel::enums;
using enums::Generation;
using enums::LogbookEntryType;
using lgb::code::Code;
using recording::platform;
using tqbase2::nsa::zel::structs::LogbookEntry;

/// Each test starts on a platform that has seen nothing.
class LibraryTest : public testing::Test {
protected:
    LibraryTest() { platform() = recording::Platform(); }
};

inline constexpr LogbookEntryType noType = static_cast<LogbookEntryType>(3);
inline constexpr Generation noGeneration = static_cast<Generation>(3);

inline Code info(unsigned int id) {
    return {id, LogbookEntryType::Info};
}

inline Code warning(unsigned int id) {
    return {id, LogbookEntryType::Warning};
}

inline Code error(unsigned int id) {
    return {id, LogbookEntryType::Error};
}

/// What was logged on the library's channel at one level.
inline std::vector<std::string> logged(unsigned int level) {
    std::vector<std::string> messages;
    for (const recording::LogLine& line : platform().log) {
        EXPECT_EQ(line.channel, "libTqZelLogbook");
        if (line.level == level) {
            messages.push_back(line.message);
        }
    }
    return messages;
}

/// All that was logged, in its order: the level, a blank and the message.
inline std::vector<std::string> everythingLogged() {
    std::vector<std::string> lines;
    for (const recording::LogLine& line : platform().log) {
        EXPECT_EQ(line.channel, "libTqZelLogbook");
        lines.push_back(std::to_string(line.level) + ' ' + line.message);
    }
    return lines;
}

using Lines = std::vector<std::string>;

}  // namespace librarytest
