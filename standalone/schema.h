#pragma once

#include <array>
#include <string>

/// The tables of a logbook's file and the statements over them, as the database and the measure of its floor use them.
namespace standalone::schema {

// What stands in the header of every file: "TqZL", and the version of the tables below. A newer version has other
// tables, too, by which it is told from a damaged header.
inline constexpr int applicationId = 0x54715a4c;
inline constexpr int version = 2;

// A commit writes each page that it touches whole. Of a record as the library makes it three fit into a page.
inline constexpr int pageBytes = 1024;

/// What the file keeps as a table, in this order.
struct Table {
    const char* name;
    const char* sql;  ///< null: SQLite's own
};

// A persistent format. `logbook` has one row; all of it stands in an index too, so that one damaged page can't take
// both.
inline constexpr std::array<Table, 4> tables = {{
    {"logbook",
     "CREATE TABLE logbook (id BLOB NOT NULL, capacity INTEGER NOT NULL, cleared INTEGER NOT NULL, "
     "checksum INTEGER NOT NULL, UNIQUE (id, capacity, cleared, checksum)) STRICT"},
    {"sqlite_autoindex_logbook_1", nullptr},
    {"record",
     "CREATE TABLE record (number INTEGER PRIMARY KEY, seconds INTEGER NOT NULL, nanoseconds INTEGER NOT NULL, "
     "time TEXT NOT NULL, json TEXT NOT NULL, checksum INTEGER NOT NULL) STRICT"},
    {"lost", "CREATE TABLE lost (first INTEGER PRIMARY KEY, last INTEGER NOT NULL, found INTEGER NOT NULL) STRICT"},
}};

inline constexpr const char* insertLogbook =
    "INSERT INTO logbook (id, capacity, cleared, checksum) VALUES (?, ?, ?, ?)";

inline constexpr const char* selectLogbook = "SELECT id, capacity, cleared, checksum FROM logbook";

inline constexpr const char* updateLogbook = "UPDATE logbook SET capacity = ?, cleared = ?, checksum = ?";

inline constexpr const char* insertLost = "INSERT INTO lost (first, last, found) VALUES (?, ?, ?)";

inline constexpr const char* selectLost = "SELECT first, last, found FROM lost ORDER BY first";

inline constexpr const char* deleteAllLost = "DELETE FROM lost";

inline constexpr const char* deleteOldestLost = "DELETE FROM lost WHERE last < ?";

/// How many records there are, the first and the last number.
inline constexpr const char* selectNumbers = "SELECT count(*), min(number), max(number) FROM record";

/// @param condition what is to stand behind WHERE
/// @param furtherColumns each with a comma before it
inline std::string selectRecords(const char* condition, const char* furtherColumns = "") {
    return std::string("SELECT number, seconds, nanoseconds, time, json, checksum") + furtherColumns +
           " FROM record WHERE " + condition;
}

/// The condition for a page, newest first: numbers to skip, most records.
inline constexpr const char* onPage = "number <= (SELECT max(number) FROM record) - ? ORDER BY number DESC LIMIT ?";

/// The newest record and the newest lost range.
inline constexpr const char* selectNewest = "SELECT (SELECT max(number) FROM record), (SELECT max(first) FROM lost)";

/// The oldest and the newest record, null when there is none, up to which number was cleared, the capacity, the newest
/// lost range.
inline constexpr const char* selectBounds =
    "SELECT (SELECT min(number) FROM record), (SELECT max(number) FROM record), cleared, capacity, "
    "(SELECT max(first) FROM lost) FROM logbook";

inline constexpr const char* insertRecord =
    "INSERT INTO record (number, seconds, nanoseconds, time, json, checksum) VALUES (?, ?, ?, ?, ?, ?)";

inline constexpr const char* deleteOldest = "DELETE FROM record WHERE number <= ?";

inline constexpr const char* deleteAll = "DELETE FROM record";

}  // namespace standalone::schema
