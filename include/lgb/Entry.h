#pragma once

#include <lgb/Code.h>
#include <nsa/zel/export.h>
#include <nsa/zel/structs/LogbookEntry.h>

#include <iosfwd>
#include <string>

namespace lgb {

/// The entry that application code builds from a code: of generation Heron, unit and device -1 (none).
struct TQZEL_EXPORT Entry : tqbase2::nsa::zel::structs::LogbookEntry {
    /// A coded message without parameters.
    Entry(const code::Code& message);

    /// A coded message with its parameter record or, for a code of id 0, a free-text entry.
    /// @param message any code; one that has no message reads "unknown entry" when it is shown
    /// @param text becomes `details.params` (see lgb/params.h), or `description` when the id is 0
    Entry(const code::Code& message, const std::string& text);
};

/// Whether the entry has no code and belongs in the service logbook alone. Tests the low 32 bits of the code, the
/// width of an id.
TQZEL_EXPORT bool isServiceOnly(const tqbase2::nsa::zel::structs::LogbookEntry& entry);

/// Writes the long form of the entry's record.
TQZEL_EXPORT std::ostream& operator<<(std::ostream& stream, const Entry& entry);

}  // namespace lgb
