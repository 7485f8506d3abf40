#pragma once

#include "Connection.h"
#include "errors.h"

#include <sqlite3.h>

#include <string>

namespace standalone {

/// What is wrong with a file, thrown by those who don't know its name.
struct Fault {
    Failure kind;
    std::string reason;
};

/// What the system's error number means for a logbook.
Failure failureOf(int error);

/// What SQLite's outcome means for a logbook.
/// @param connection that met it; null when none could be made
Failure failureOf(const SqliteError& exception, sqlite3* connection);

/// "file: reason" as a DatabaseError.
[[noreturn]] void refuse(const std::string& file, int error);
[[noreturn]] void refuse(const std::string& file, const Fault& fault);
[[noreturn]] void refuse(const std::string& file, const SqliteError& exception, sqlite3* connection);

}  // namespace standalone
