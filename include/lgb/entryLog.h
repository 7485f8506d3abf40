#pragma once

#include <nsa/zel/export.h>
#include <nsa/zel/structs/LogbookEntry.h>

#include <string>

namespace lgb {

/// The compact form for log files: code, device, unit, generation unless Heron, description in quotes, params; what is
/// absent or empty is left out. "E282 device=4 {"role":"unit","nr":5}". Nothing is escaped.
TQZEL_EXPORT std::string entryStr(const tqbase2::nsa::zel::structs::LogbookEntry& entry);

/// Mirrors the compact form into the diagnostic log: information at level 2, warnings at 3, all else at 4. Safe from
/// any thread when the platform's logger is.
TQZEL_EXPORT void entryLog(const tqbase2::nsa::zel::structs::LogbookEntry& entry);

}  // namespace lgb
