#pragma once

#include <nsa/zel/enums/Generation.h>
#include <nsa/zel/enums/LogbookEntryType.h>
#include <nsa/zel/export.h>

#include <cstdint>
#include <iosfwd>
#include <string>

/// The record of an entry and its stored form: plain data.
namespace tqbase2::nsa::zel::structs {

/// Where an entry comes from and what it carries.
struct LogbookEntryDetails {
    std::int64_t unit = 0;    ///< number of the unit concerned; negative, written as -1: none
    std::int64_t device = 0;  ///< number of the device concerned; negative, written as -1: none
    std::string params;       ///< parameter record, the text of one JSON object (see lgb/params.h), or empty
    enums::Generation generation = enums::Generation::Unknown;  ///< Kestrel: `params` holds the message itself
};

/// One logbook entry as the application sees it. A plain value: distinct objects may be used from different threads.
struct LogbookEntry {
    enums::LogbookEntryType type = enums::LogbookEntryType::Info;  ///< decides with `code` over the message
    std::uint64_t code = 0;       ///< message id; 0: free text, shown in the service logbook only
    std::string description;      ///< made anew at every fetch for a coded entry; the free text for code 0
    LogbookEntryDetails details;  ///< where from, and the parameters
};

}  // namespace tqbase2::nsa::zel::structs

namespace std {

/// Writes every field of the record on one line without a line end, for log files:
/// "type: W - code: 23 - description:  - details: unit: -1 - device: 4 - params:  - generation: Heron".
/// Nothing is escaped. In namespace std, where argument-dependent look-up finds it from any namespace.
/// @relatesalso tqbase2::nsa::zel::structs::LogbookEntry
TQZEL_EXPORT ostream& operator<<(ostream& stream, const tqbase2::nsa::zel::structs::LogbookEntry& entry);

}  // namespace std
