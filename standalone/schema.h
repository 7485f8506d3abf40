#pragma once

#include <string>

/// The tables of a logbook's file and the statements over them, as the database and the measure of its floor use them.
namespace standalone::schema {

// A persistent format. `cleared` keeps the last number given out before everything was removed, so that numbering goes
// on behind it.
inline constexpr const char* makeTables = R"(
CREATE TABLE record (
    number      INTEGER PRIMARY KEY,
    seconds     INTEGER NOT NULL,
    nanoseconds INTEGER NOT NULL,
    time        TEXT NOT NULL,
    json        TEXT NOT NULL,
    checksum    INTEGER NOT NULL
) STRICT;
CREATE TABLE cleared (through INTEGER NOT NULL) STRICT;
INSERT INTO cleared VALUES (0);
)";

/// How many records there are, the first and the last number, and that of the last record cleared.
inline constexpr const char* selectNumbers =
    "SELECT count(*), min(number), max(number), max(through) FROM record, cleared";

/// @param condition what is to stand behind WHERE
/// @param furtherColumns each with a comma before it
inline std::string selectRecords(const char* condition, const char* furtherColumns = "") {
    return std::string("SELECT number, seconds, nanoseconds, time, json, checksum") + furtherColumns +
           " FROM record WHERE " + condition;
}

/// The condition for a page, newest first: records to skip, most records.
inline constexpr const char* onPage = "number <= (SELECT max(number) FROM record) - ? ORDER BY number DESC LIMIT ?";

inline constexpr const char* selectNextNumber =
    "SELECT 1 + coalesce((SELECT max(number) FROM record), (SELECT through FROM cleared))";

inline constexpr const char* insertRecord =
    "INSERT INTO record (number, seconds, nanoseconds, time, json, checksum) VALUES (?, ?, ?, ?, ?, ?)";

inline constexpr const char* deleteOldest = "DELETE FROM record WHERE number <= ?";

/// Before all records are deleted.
inline constexpr const char* rememberLastNumber =
    "UPDATE cleared SET through = coalesce((SELECT max(number) FROM record), through)";

inline constexpr const char* deleteAll = "DELETE FROM record";

inline constexpr const char* selectCount =
    "SELECT coalesce((SELECT max(number) FROM record) - (SELECT min(number) FROM record) + 1, 0)";

}  // namespace standalone::schema
