#pragma once

#include <SQLiteCpp/Database.h>

#include <cstdint>
#include <string>

namespace standalone {

/// A connection to the SQLite file of one logbook, made when missing, ready for use: its format checked, each commit
/// safe from power loss, and the space of a full logbook set aside, so that recording goes on when the disk is full.
/// @param capacity records that space is set aside for; 0: none
/// @throws DatabaseError naming the file, which is then left as it is
SQLite::Database openLogbook(const std::string& file, std::uint32_t capacity);

/// A connection that reads a file, whatever it holds, and neither changes nor makes any file.
/// @throws DatabaseError naming the file, also when there is none
SQLite::Database connectForReading(const std::string& file);

/// The same for the file of a logbook.
/// @throws DatabaseError naming the file, also when it is damaged or no logbook
SQLite::Database openForReading(const std::string& file);

/// Leaves the write-ahead log empty, but its space set aside. What is left in a log would pass for newer than the
/// database when it is opened again; damage to it could take events back. Others who use the file are waited for up to
/// 5 s; when they go on using it, what could be written back is in the database, and the log stays.
void emptyWriteAheadLog(SQLite::Database& connection) noexcept;

/// Writes as much of the log into the database as its readers allow, which makes room in the log.
void checkpoint(SQLite::Database& connection) noexcept;

/// "file: reason" as a DatabaseError.
[[noreturn]] void refuse(const std::string& file, const std::exception& reason);

}  // namespace standalone
