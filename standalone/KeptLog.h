#pragma once

#include "WriteAheadLog.h"

#include <sqlite3.h>

namespace standalone {

/// The write-ahead log of a connection, which keeps its space: where SQLite would cut it to nothing, under its locks,
/// it is marked as empty instead, safe from power loss. On a full disk space that was given back would be gone.
class KeptLog {
public:
    /// @param connection that has read, so that its log is open; it must be closed before this object ends
    explicit KeptLog(sqlite3* connection);
    KeptLog(const KeptLog&) = delete;
    KeptLog& operator=(const KeptLog&) = delete;

    /// What the log is to be marked with from now on.
    void markWith(const LogMark& mark) { functions.mark = mark.toBytes(); }

private:
    /// Stands in the place of SQLite's own functions, with one of them changed.
    struct Functions {
        sqlite3_io_methods changed;
        const sqlite3_io_methods* itself;
        LogMark::Bytes mark;
    };

    static int cut(sqlite3_file* log, sqlite3_int64 size);

    Functions functions{};
};

}  // namespace standalone
