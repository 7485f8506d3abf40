#include "SqliteDatabase.h"

#include "errors.h"

#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include <chrono>
#include <thread>

namespace lgb {

IDatabase::~IDatabase() = default;

}  // namespace lgb

namespace standalone {

namespace {

constexpr std::chrono::milliseconds lockTimeout(5000);

// Stand in the header of every file: "TqZL", and the version of the tables below.
constexpr int applicationId = 0x54715a4c;
constexpr int schemaVersion = 1;

// `cleared` keeps the last number given out before everything was removed, so that numbering goes on behind it.
constexpr const char* schema = R"(
CREATE TABLE record (
    number      INTEGER PRIMARY KEY,
    seconds     INTEGER NOT NULL,
    nanoseconds INTEGER NOT NULL,
    time        TEXT NOT NULL,
    json        TEXT NOT NULL
) STRICT;
CREATE TABLE cleared (through INTEGER NOT NULL) STRICT;
INSERT INTO cleared VALUES (0);
)";

constexpr const char* pageSql = R"(
SELECT seconds, nanoseconds, time, json FROM record
WHERE number <= (SELECT max(number) FROM record) - ?
ORDER BY number DESC LIMIT ?)";

constexpr const char* insertSql = R"(
INSERT INTO record (number, seconds, nanoseconds, time, json)
VALUES (1 + coalesce((SELECT max(number) FROM record), (SELECT through FROM cleared)), ?, ?, ?, ?))";

constexpr const char* deleteOldestSql = R"(
DELETE FROM record WHERE number <= (SELECT max(number) FROM record) - ?)";

constexpr const char* clearSql = R"(
UPDATE cleared SET through = coalesce((SELECT max(number) FROM record), through);
DELETE FROM record;
)";

constexpr const char* countSql = R"(
SELECT coalesce((SELECT max(number) FROM record) - (SELECT min(number) FROM record) + 1, 0))";

/// What a file turned out to be.
enum class Content { Nothing, Logbook };

int pragma(SQLite::Database& connection, const std::string& name) {
    return connection.execAndGet("PRAGMA " + name).getInt();
}

/// Only reads, so that a file that is refused stays as it is. Within a transaction, or what it sees may be half of what
/// another process is making.
Content examine(SQLite::Database& connection) {
    const int id = pragma(connection, "application_id");
    const int version = pragma(connection, "user_version");
    if (id == 0 && version == 0 && connection.execAndGet("SELECT count(*) FROM sqlite_master").getInt() == 0) {
        return Content::Nothing;
    }
    if (id != applicationId) {
        throw DatabaseError("an SQLite database, but not a logbook");
    }
    if (version > schemaVersion) {
        throw DatabaseError("written by schema " + std::to_string(version) + ", this program reads up to " +
                            std::to_string(schemaVersion));
    }
    const std::string found = connection.execAndGet("PRAGMA quick_check(1)").getString();
    if (found != "ok") {
        throw DatabaseError("damaged: " + found.substr(found.rfind('\n') + 1));
    }
    return Content::Logbook;
}

Content contentOf(SQLite::Database& connection) {
    const SQLite::Transaction transaction(connection);
    return examine(connection);
}

/// Somebody else may be making the same logbook at this moment: whoever gets the lock first does.
void makeLogbook(SQLite::Database& connection) {
    SQLite::Transaction transaction(connection, SQLite::TransactionBehavior::IMMEDIATE);
    if (examine(connection) == Content::Nothing) {
        connection.exec("PRAGMA application_id = " + std::to_string(applicationId));
        connection.exec("PRAGMA user_version = " + std::to_string(schemaVersion));
        connection.exec(schema);
    }
    transaction.commit();
}

/// Each commit is one append to the write-ahead log. SQLite does not wait when two processes switch at once, as each
/// would wait for the other; so this does.
void switchToWriteAheadLog(SQLite::Database& connection) {
    constexpr const char* sql = "PRAGMA journal_mode = WAL";
    const auto deadline = std::chrono::steady_clock::now() + lockTimeout;
    while (connection.tryExec(sql) == SQLITE_BUSY && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    connection.exec(sql);
}

[[noreturn]] void refuse(const std::string& file, const std::exception& reason) {
    throw DatabaseError(file + ": " + reason.what());
}

SQLite::Database open(const std::string& file) {
    try {
        SQLite::Database connection(file, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE,
                                    static_cast<int>(lockTimeout.count()));
        if (contentOf(connection) == Content::Nothing) {
            makeLogbook(connection);
        }
        switchToWriteAheadLog(connection);
        connection.exec("PRAGMA synchronous = FULL");  // a commit returns when it would survive power loss
        return connection;
    } catch (const SQLite::Exception& exception) {
        refuse(file, exception);
    } catch (const DatabaseError& error) {
        refuse(file, error);
    }
}

/// Ends a statement's use: a statement left standing keeps a read transaction open.
class Use {
public:
    explicit Use(SQLite::Statement& used) : statement(used) {}

    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    ~Use() { statement.tryReset(); }

private:
    SQLite::Statement& statement;
};

}  // namespace

SqliteDatabase::SqliteDatabase(const std::string& path, std::uint32_t recordsKept)
    : file(path),
      capacity(recordsKept),
      connection(open(path)),
      selectPage(connection, pageSql),
      insertRecord(connection, insertSql),
      deleteOldest(connection, deleteOldestSql),
      selectCount(connection, countSql) {}

template <typename Operation>
auto SqliteDatabase::guarded(Operation operation) {
    const std::lock_guard lock(mutex);
    try {
        return operation();
    } catch (const SQLite::Exception& exception) {
        refuse(file, exception);
    }
}

std::vector<lgb::DatabaseRecord> SqliteDatabase::fetch(unsigned int offset, unsigned int count) {
    return guarded([&] {
        const Use use(selectPage);
        selectPage.bind(1, std::int64_t{offset});
        selectPage.bind(2, std::int64_t{count});
        std::vector<lgb::DatabaseRecord> page;
        while (selectPage.executeStep()) {
            page.push_back({{selectPage.getColumn(0).getInt64(), selectPage.getColumn(1).getInt64(),
                             selectPage.getColumn(2).getString()},
                            selectPage.getColumn(3).getString()});
        }
        return page;
    });
}

void SqliteDatabase::add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) {
    guarded([&] {
        SQLite::Transaction transaction(connection, SQLite::TransactionBehavior::IMMEDIATE);
        {
            const Use use(insertRecord);
            insertRecord.bind(1, timestamp.seconds);
            insertRecord.bind(2, timestamp.nanoseconds);
            insertRecord.bind(3, timestamp.text);
            insertRecord.bind(4, json);
            insertRecord.exec();
        }
        if (capacity > 0) {
            const Use use(deleteOldest);
            deleteOldest.bind(1, capacity);
            deleteOldest.exec();
        }
        transaction.commit();
    });
}

void SqliteDatabase::clear() {
    guarded([&] {
        SQLite::Transaction transaction(connection, SQLite::TransactionBehavior::IMMEDIATE);
        connection.exec(clearSql);
        transaction.commit();
    });
}

unsigned int SqliteDatabase::count() {
    return guarded([&] {
        const Use use(selectCount);
        selectCount.executeStep();
        return selectCount.getColumn(0).getUInt();
    });
}

}  // namespace standalone
