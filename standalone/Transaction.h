#pragma once

#include "Statement.h"

namespace standalone {

/// What begins and ends transactions: prepared once, as that costs more than what they do.
struct TransactionStatements {
    static constexpr const char* reading = "BEGIN";
    static constexpr const char* writing = "BEGIN IMMEDIATE";

    TransactionStatements(Connection& connection, const char* beginning)
        : begin(connection, beginning), commit(connection, "COMMIT"), rollback(connection, "ROLLBACK") {}

    Statement begin;
    Statement commit;
    Statement rollback;
};

/// Rolls back unless committed, even when there is no memory left: an exception on the way would end the program, and a
/// transaction left open would fail every operation to come.
class Transaction {
public:
    explicit Transaction(TransactionStatements& prepared) : statements(prepared) { statements.begin.run(); }

    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    ~Transaction() {
        if (!committed) {
            statements.rollback.tryRun();
        }
    }

    void commit() {
        statements.commit.run();
        committed = true;
    }

private:
    TransactionStatements& statements;
    bool committed = false;
};

}  // namespace standalone
