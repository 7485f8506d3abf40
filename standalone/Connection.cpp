#include "Connection.h"

namespace standalone {

namespace {

/// For others it is what was met before.
bool isOfSystem(int outcome) {
    return outcome == SQLITE_IOERR || outcome == SQLITE_CANTOPEN;
}

}  // namespace

SqliteError::SqliteError(sqlite3* connection, int outcome)
    : std::runtime_error(connection == nullptr ? sqlite3_errstr(outcome) : sqlite3_errmsg(connection)),
      extended(connection == nullptr ? outcome : sqlite3_extended_errcode(connection)),
      system(isOfSystem(extended & 0xff) ? sqlite3_system_errno(connection) : 0) {}

Connection::Connection(const std::string& database, int flags) {
    sqlite3* opened = nullptr;
    const int outcome = sqlite3_open_v2(database.c_str(), &opened, flags, nullptr);
    connection.reset(opened);
    if (outcome != SQLITE_OK) {
        throw SqliteError(opened, outcome);
    }
}

sqlite3_file* Connection::file() const {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    return file;
}

void Connection::execute(const std::string& sql) const {
    const int outcome = sqlite3_exec(handle(), sql.c_str(), nullptr, nullptr, nullptr);
    if (outcome != SQLITE_OK) {
        throw SqliteError(handle(), outcome);
    }
}

}  // namespace standalone
