#include "SqliteDatabase.h"

#include "LogbookFile.h"
#include "Transaction.h"
#include "checksum.h"

#include <tqbase2/system/log/detail.h>

#include <SQLiteCpp/Exception.h>
#include <sqlite3.h>

#include <utility>

namespace lgb {

IDatabase::~IDatabase() = default;

}  // namespace lgb

namespace standalone {

namespace {

constexpr const char* pageSql = R"(
SELECT number, seconds, nanoseconds, time, json, checksum FROM record
WHERE number <= (SELECT max(number) FROM record) - ?
ORDER BY number DESC LIMIT ?)";

constexpr const char* nextNumberSql = R"(
SELECT 1 + coalesce((SELECT max(number) FROM record), (SELECT through FROM cleared)))";

constexpr const char* insertSql = R"(
INSERT INTO record (number, seconds, nanoseconds, time, json, checksum) VALUES (?, ?, ?, ?, ?, ?))";

constexpr const char* deleteOldestSql = "DELETE FROM record WHERE number <= ?";

constexpr const char* clearSql = R"(
UPDATE cleared SET through = coalesce((SELECT max(number) FROM record), through);
DELETE FROM record;
)";

constexpr const char* countSql = R"(
SELECT coalesce((SELECT max(number) FROM record) - (SELECT min(number) FROM record) + 1, 0))";

void logDamage(const std::string& file, std::int64_t number) {
    constexpr unsigned int error = 4;  // the highest level, which nothing switches off
    constexpr const char* channel = "libTqZelPlatform";
    tqbase2::system::log::detail::log(error, channel,
                                      file + ": record " + std::to_string(number) + " is damaged and left out");
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
      connection(openLogbook(path, recordsKept)),
      selectPage(prepare(pageSql)),
      selectNextNumber(prepare(nextNumberSql)),
      insertRecord(prepare(insertSql)),
      deleteOldest(prepare(deleteOldestSql)),
      selectCount(prepare(countSql)) {}

SqliteDatabase::~SqliteDatabase() {
    if (written) {
        emptyWriteAheadLog(connection);
    }
}

template <typename Operation>
auto SqliteDatabase::guarded(Operation operation) {
    const std::lock_guard lock(mutex);
    try {
        return operation();
    } catch (const SQLite::Exception& exception) {
        refuse(file, exception);
    }
}

SQLite::Statement SqliteDatabase::prepare(const char* sql) {
    return guarded([&] { return SQLite::Statement(connection, sql); });
}

template <typename Change>
void SqliteDatabase::commit(Change change) {
    guarded([&] {
        const auto attempt = [&] {
            Transaction transaction(connection, Transaction::writing);
            change();
            transaction.commit();
            written = true;
        };
        try {
            attempt();
        } catch (const SQLite::Exception& exception) {
            if (exception.getErrorCode() != SQLITE_FULL) {
                throw;
            }
            checkpoint(connection);
            attempt();
        }
    });
}

std::vector<lgb::DatabaseRecord> SqliteDatabase::fetch(unsigned int offset, unsigned int count) {
    return guarded([&] {
        const Use use(selectPage);
        selectPage.bind(1, std::int64_t{offset});
        selectPage.bind(2, std::int64_t{count});
        std::vector<lgb::DatabaseRecord> page;
        while (selectPage.executeStep()) {
            const std::int64_t number = selectPage.getColumn(0);
            lgb::DatabaseRecord record{{selectPage.getColumn(1), selectPage.getColumn(2), selectPage.getColumn(3)},
                                       selectPage.getColumn(4)};
            if (checksum(number, record) == selectPage.getColumn(5).getInt64()) {
                page.push_back(std::move(record));
            } else {
                logDamage(file, number);
            }
        }
        return page;
    });
}

void SqliteDatabase::add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) {
    commit([&] {
        const std::int64_t number = nextNumber();
        insert(number, {timestamp, json});
        if (capacity > 0 && number > capacity) {
            const Use use(deleteOldest);
            deleteOldest.bind(1, number - capacity);
            deleteOldest.exec();
        }
    });
}

std::int64_t SqliteDatabase::nextNumber() {
    const Use use(selectNextNumber);
    selectNextNumber.executeStep();
    return selectNextNumber.getColumn(0);
}

void SqliteDatabase::insert(std::int64_t number, const lgb::DatabaseRecord& record) {
    const Use use(insertRecord);
    insertRecord.bind(1, number);
    insertRecord.bind(2, record.timestamp.seconds);
    insertRecord.bind(3, record.timestamp.nanoseconds);
    insertRecord.bind(4, record.timestamp.text);
    insertRecord.bind(5, record.json);
    insertRecord.bind(6, std::int64_t{checksum(number, record)});
    insertRecord.exec();
}

void SqliteDatabase::clear() {
    commit([&] { connection.exec(clearSql); });
}

unsigned int SqliteDatabase::count() {
    return guarded([&] {
        const Use use(selectCount);
        selectCount.executeStep();
        return selectCount.getColumn(0).getUInt();
    });
}

}  // namespace standalone
