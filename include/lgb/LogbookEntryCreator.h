#pragma once

#include <lgb/Code.h>
#include <nsa/zel/export.h>
#include <nsa/zel/logbook/Entry.h>
#include <nsa/zel/structs/LogbookEntry.h>

#include <string>

namespace lgb {

/// An entry with every field at its zero value (unit and device 0, generation Unknown) and the current time.
TQZEL_EXPORT tqbase2::nsa::zel::logbook::Entry createBaseEntry();

/// Makes the entries that a logbook adds, stamped with the platform's current time. Safe from any thread when the
/// platform's clock is; passes on what the clock throws.
class TQZEL_EXPORT LogbookEntryCreator {
public:
    /// A copy of the record.
    static tqbase2::nsa::zel::logbook::Entry create(const tqbase2::nsa::zel::structs::LogbookEntry& entry);

    /// An entry for the service logbook alone, of generation Heron, unit and device -1 (none).
    /// @param text becomes the description; with a code whose id is not 0 it becomes the parameter record instead
    /// @param code usually of id 0; its type is the entry's
    static tqbase2::nsa::zel::logbook::Entry createServiceOnly(const std::string& text, const code::ServiceCode& code);
};

}  // namespace lgb
