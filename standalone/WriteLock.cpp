#include "WriteLock.h"

#include "LogbookFiles.h"
#include "Waiting.h"
#include "failures.h"

#include <cerrno>

namespace standalone {

namespace {

// Those of SQLite's locks on a log that a writer, somebody who writes back, and somebody who recovers it takes.
constexpr int first = 0;
constexpr int count = 3;

}  // namespace

WriteLock::WriteLock(const std::string& database)
    : connection(pathForSqlite(database), SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW), file(connection.file()) {
    constexpr int indexBytes = 32 * 1024;
    volatile void* index = nullptr;
    errno = 0;
    if (file->pMethods->xShmMap(file, 0, indexBytes, 1, &index) != SQLITE_OK) {
        const int error = errno;
        file->pMethods->xShmUnmap(file, 0);  // it may be mapped in part
        refuse(database, error == 0 ? EIO : error);
    }
    const Waiting waiting;
    while (file->pMethods->xShmLock(file, first, count, SQLITE_SHM_LOCK | SQLITE_SHM_EXCLUSIVE) != SQLITE_OK) {
        if (!waiting.goesOn()) {
            file->pMethods->xShmUnmap(file, 0);
            throw DatabaseError(Failure::Busy, database + ": in use by another process");
        }
    }
}

WriteLock::~WriteLock() {
    file->pMethods->xShmLock(file, first, count, SQLITE_SHM_UNLOCK | SQLITE_SHM_EXCLUSIVE);
    file->pMethods->xShmUnmap(file, 0);
}

}  // namespace standalone
