#pragma once

#include "Connection.h"
#include "errors.h"

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
Failure failureOf(const SqliteError& exception);

/// "file: reason" as a DatabaseError.
[[noreturn]] void refuse(const std::string& file, int error);
[[noreturn]] void refuse(const std::string& file, const Fault& fault);
[[noreturn]] void refuse(const std::string& file, const SqliteError& exception);

}  // namespace standalone
