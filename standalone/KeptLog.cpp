#include "KeptLog.h"

#include <cstddef>

namespace standalone {

KeptLog::KeptLog(sqlite3* connection) {
    static_assert(offsetof(Functions, changed) == 0, "a file leads to what stands behind its functions");
    sqlite3_file* log = nullptr;
    sqlite3_file_control(connection, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
    functions.itself = log->pMethods;
    functions.changed = *log->pMethods;
    functions.changed.xTruncate = cut;
    log->pMethods = &functions.changed;
}

/// To nothing, always: its size has no limit.
int KeptLog::cut(sqlite3_file* log, sqlite3_int64) {
    const auto& own = *reinterpret_cast<const Functions*>(log->pMethods);
    LogMark::Bytes found{};
    if (own.itself->xRead(log, found.data(), static_cast<int>(found.size()), 0) == SQLITE_OK && found == own.mark) {
        return SQLITE_OK;
    }
    int outcome = own.itself->xWrite(log, own.mark.data(), static_cast<int>(own.mark.size()), 0);
    if (outcome == SQLITE_OK) {
        outcome = own.itself->xSync(log, SQLITE_SYNC_NORMAL);
    }
    sqlite3_int64 bytes = 0;
    if (outcome == SQLITE_OK && own.itself->xFileSize(log, &bytes) == SQLITE_OK && bytes > logBytes) {
        // Not synced: behind the mark, which is, a log is read as empty, however long it is.
        own.itself->xTruncate(log, logBytes);
    }
    return outcome;
}

}  // namespace standalone
