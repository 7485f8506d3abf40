#include "Connection.h"

#include <string_view>
#include <utility>

namespace standalone {

namespace {

/// For others it is what was met before.
bool isOfSystem(int outcome) {
    return outcome == SQLITE_IOERR || outcome == SQLITE_CANTOPEN;
}

bool isJournal(std::string_view file) {
    constexpr std::string_view end = "-journal";
    return file.size() >= end.size() && file.substr(file.size() - end.size()) == end;
}

}  // namespace

SqliteError::SqliteError(sqlite3* connection, int outcome)
    : std::runtime_error(connection == nullptr ? sqlite3_errstr(outcome) : sqlite3_errmsg(connection)),
      extended(connection == nullptr ? outcome : sqlite3_extended_errcode(connection)),
      system(isOfSystem(extended & 0xff) ? sqlite3_system_errno(connection) : 0) {}

/// The files as SQLite usually has them, but for journals, of which there are none: it would carry out what stands in
/// one that somebody put there, and delete what that names.
struct Connection::Files : sqlite3_vfs {
    Files() : sqlite3_vfs(*sqlite3_vfs_find(nullptr)), below(sqlite3_vfs_find(nullptr)) {
        auto address = reinterpret_cast<std::uintptr_t>(this);
        for (char* letter = name; address != 0; address >>= 4) {
            *letter++ = static_cast<char>('a' + (address & 15));
        }
        zName = name;
        xAccess = [](sqlite3_vfs* own, const char* file, int flags, int* outcome) {
            *outcome = 0;
            sqlite3_vfs* const usual = static_cast<Files*>(own)->below;
            return isJournal(file) ? SQLITE_OK : usual->xAccess(usual, file, flags, outcome);
        };
    }

    sqlite3_vfs* below;
    char name[2 * sizeof(void*) + 1] = {};  // others may be opening at the same time
};

Connection& Connection::operator=(Connection&& other) noexcept {
    connection = std::move(other.connection);  // before what it uses
    files = std::move(other.files);
    return *this;
}

Connection::~Connection() = default;

Connection::Connection(const std::string& database, int flags) : files(std::make_unique<Files>()) {
    sqlite3* opened = nullptr;
    sqlite3_vfs_register(files.get(), 0);
    const int outcome = sqlite3_open_v2(database.c_str(), &opened, flags, files->zName);
    sqlite3_vfs_unregister(files.get());
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
