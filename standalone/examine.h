#pragma once

#include "Connection.h"
#include "LogbookHead.h"
#include "LostRanges.h"

#include <cstdint>
#include <string>
#include <vector>

namespace standalone {

/// What a file turned out to hold.
struct Examination {
    LogbookHead head;
    LostRanges lost;
    std::int64_t oldest = 0;            ///< number of a record; 0: there is none
    std::int64_t newest = 0;            ///< number ever given out
    std::vector<std::int64_t> damaged;  ///< numbers of records that are not what was stored
};

/// @throws Fault, when it is damaged
LogbookHead headOf(Connection& connection);

/// @throws Fault, when it is damaged
LostRanges lostOf(Connection& connection);

void writeHead(Connection& connection, const LogbookHead& head);

/// Settings under which nothing that a file says of itself is carried out.
/// @throws SqliteError; Fault, when it has more tables than SQLite should read
void distrust(Connection& connection);

/// Compares a file with exactly what a logbook is, before anything in it is believed. Only reads. Within a transaction
/// of its own, or what it sees may be half of what another process is making.
/// @throws Fault, SqliteError
Examination examine(Connection& connection);

/// The same without a look at each record.
Examination examineStructure(Connection& connection);

/// What in the header of a file is the same in all logbooks, and is not looked at by SQLite, or only too late.
/// @throws Fault, when it is damaged
void requireHeader(Connection& connection);

/// Whether a file says that it is written without a write-ahead log, as copies that others make may.
bool isWithoutLog(Connection& connection);

}  // namespace standalone
