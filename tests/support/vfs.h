#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <string>

namespace support {

/// What SQLite asks of the file system.
enum class Call {
    Name,
    Open,
    Delete,
    Access,
    Read,
    Write,
    Grow,
    Truncate,
    Sync,
    Size,
    Lock,
    Unlock,
    TestLock,
    MapShared,
    LockShared,
    UnlockShared,
};

/// How a call is to end.
struct Answer {
    int code = SQLITE_OK;  ///< anything else: the call fails and is not carried out; a lock is given back all the same
    bool half = false;     ///< of a write that fails the first half is carried out
};

/// Stands between SQLite and the file system for as long as it lasts, for every file that is opened in that time. What
/// derives from it says how calls end. For one thread.
class Vfs {
public:
    Vfs();
    Vfs(const Vfs&) = delete;
    Vfs& operator=(const Vfs&) = delete;
    virtual ~Vfs();

    virtual Answer answer(Call call) = 0;

private:
    sqlite3_vfs registered;
};

/// "ok", or what is wrong with the database, which is read past any Vfs.
std::string integrityOf(const std::filesystem::path& database);

}  // namespace support
