#pragma once

#include <sqlite3.h>
#include "Connection.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace standalone {

/// A statement, prepared once.
class Statement {
public:
    /// @throws SqliteError, here and from what follows
    Statement(Connection& database, const std::string& sql) : connection(database.handle()) {
        check(sqlite3_prepare_v2(connection, sql.c_str(), -1, &handle, nullptr), SQLITE_OK);
    }

    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    ~Statement() { sqlite3_finalize(handle); }

    void bind(int index, std::int64_t value) { check(sqlite3_bind_int64(handle, index, value), SQLITE_OK); }

    /// @param text must last until the statement is reset
    void bind(int index, std::string_view text) {
        const char* const bytes = text.empty() ? "" : text.data();
        check(sqlite3_bind_text64(handle, index, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8), SQLITE_OK);
    }

    /// @param bytes must last until the statement is reset
    template <typename Bytes>
    void bindBytes(int index, const Bytes& bytes) {
        check(sqlite3_bind_blob64(handle, index, bytes.data(), bytes.size(), SQLITE_STATIC), SQLITE_OK);
    }

    /// Whether there is a row. A statement left standing keeps a transaction open: to be reset.
    bool step() {
        const int outcome = sqlite3_step(handle);
        if (outcome == SQLITE_ROW) {
            return true;
        }
        check(outcome, SQLITE_DONE);
        return false;
    }

    void reset() noexcept { sqlite3_reset(handle); }

    /// For a statement without rows.
    void run() { check(tryRun(), SQLITE_DONE); }

    /// The same, answering SQLite's code of the outcome. Needs no memory of its own.
    int tryRun() noexcept {
        const int outcome = sqlite3_step(handle);
        reset();
        return outcome;
    }

    bool isNull(int column) const { return sqlite3_column_type(handle, column) == SQLITE_NULL; }

    std::int64_t number(int column) const { return sqlite3_column_int64(handle, column); }

    std::string text(int column) const {
        const void* const bytes = sqlite3_column_blob(handle, column);
        return {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(handle, column))};
    }

private:
    void check(int outcome, int expected) const {
        if (outcome != expected) {
            throw SqliteError(connection, outcome);
        }
    }

    sqlite3* connection;
    sqlite3_stmt* handle = nullptr;
};

/// Ends a statement's use.
class Use {
public:
    explicit Use(Statement& used) : statement(used) {}

    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    ~Use() { statement.reset(); }

private:
    Statement& statement;
};

/// The first column of the first row.
inline std::int64_t numberFrom(Connection& connection, const std::string& sql) {
    Statement statement(connection, sql);
    statement.step();
    return statement.number(0);
}

inline std::string textFrom(Connection& connection, const std::string& sql) {
    Statement statement(connection, sql);
    statement.step();
    return statement.text(0);
}

}  // namespace standalone
