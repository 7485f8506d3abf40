#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace standalone {

/// A statement, prepared once, over SQLite's own interface: SQLiteCpp's columns cost more than what they read.
class Statement {
public:
    /// @throws SQLite::Exception, here and from what follows
    Statement(SQLite::Database& database, const std::string& sql) : connection(database.getHandle()) {
        check(sqlite3_prepare_v2(connection, sql.c_str(), -1, &handle, nullptr), SQLITE_OK);
    }

    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    ~Statement() { sqlite3_finalize(handle); }

    void bind(int index, std::int64_t value) { check(sqlite3_bind_int64(handle, index, value), SQLITE_OK); }

    /// @param text must last until the statement is reset
    void bind(int index, const std::string& text) {
        check(sqlite3_bind_text64(handle, index, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8), SQLITE_OK);
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
            throw SQLite::Exception(connection, outcome);
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

}  // namespace standalone
