#pragma once

#include "RecordScan.h"
#include "WriteAheadLog.h"
#include "examine.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace standalone {

/// What a log tells, looked through before SQLite does, which ends it at the first damage and takes any log for its
/// own.
struct LogFindings {
    std::optional<LogMark> mark;      ///< of an emptied one
    bool isForeign = false;           ///< of another logbook
    bool isTorn = false;              ///< something is behind what SQLite sees
    std::int64_t newest = 0;          ///< number of a record that was committed, seen by SQLite or not
    std::int64_t cleared = 0;         ///< as the log has it, seen by SQLite or not
    std::vector<std::int64_t> torn;   ///< numbers of the records in a transaction that is torn
    std::vector<FoundRecord> cutOff;  ///< records in a frame of that, or of one that looks older, the newest of all

    /// What is wrong, if the log tells of more than the logbook shows.
    std::optional<std::string> damageOf(const Examination& logbook) const;

    /// The newest number that was given out, as far as the log knows.
    std::int64_t newestKnown(const LogbookId& logbook) const;
};

/// Whether a log tells of no record at all.
/// @throws DatabaseError, as below
bool isEmptied(const std::string& log);

/// @throws DatabaseError, when a file can't be read
LogFindings lookThroughLog(const std::string& database, const std::string& log);

}  // namespace standalone
