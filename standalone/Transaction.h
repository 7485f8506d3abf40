#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

namespace standalone {

/// Rolls back unless committed, even when there is no memory left: an exception on the way would end the program, and a
/// transaction left open would fail every operation to come.
class Transaction {
public:
    static constexpr const char* reading = "BEGIN";
    static constexpr const char* writing = "BEGIN IMMEDIATE";

    Transaction(SQLite::Database& database, const char* begin) : connection(database), rollback(database, "ROLLBACK") {
        connection.exec(begin);
    }

    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    ~Transaction() {
        if (!committed) {
            rollback.tryExecuteStep();
        }
    }

    void commit() {
        connection.exec("COMMIT");
        committed = true;
    }

private:
    SQLite::Database& connection;
    SQLite::Statement rollback;
    bool committed = false;
};

}  // namespace standalone
