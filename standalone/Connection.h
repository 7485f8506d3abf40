#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace standalone {

/// What SQLite answers when something fails.
class SqliteError : public std::runtime_error {
public:
    /// @param connection that met it; null when none could be made
    SqliteError(sqlite3* connection, int outcome);

    int outcome() const noexcept { return extended & 0xff; }

    int extendedOutcome() const noexcept { return extended; }

    /// The system's error number behind it; 0 when it was none.
    int systemError() const noexcept { return system; }

private:
    int extended;
    int system;
};

/// A connection to a database, over SQLite's own interface: on small machines a wrapper would weigh as much as healing.
class Connection {
public:
    /// @param flags as of sqlite3_open_v2
    /// @throws SqliteError, as the others do
    Connection(const std::string& database, int flags);
    Connection& operator=(Connection&& other) noexcept;
    ~Connection();

    sqlite3* handle() const { return connection.get(); }

    sqlite3_file* file() const;

    void execute(const std::string& sql) const;

private:
    struct Files;

    struct Close {
        void operator()(sqlite3* opened) const { sqlite3_close_v2(opened); }
    };

    std::unique_ptr<Files> files;
    std::unique_ptr<sqlite3, Close> connection;
};

}  // namespace standalone
