#pragma once

#include <sqlite3.h>
#include "Connection.h"

#include <string>

namespace standalone {

/// Keeps everybody from writing to a database and its log, without reading either.
class WriteLock {
public:
    /// Waits for others.
    explicit WriteLock(const std::string& database);
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;
    ~WriteLock();

private:
    Connection connection;
    sqlite3_file* file;
};

}  // namespace standalone
