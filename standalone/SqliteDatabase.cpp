#include "SqliteDatabase.h"

#include "LogbookFile.h"
#include "checksum.h"
#include "schema.h"
#include "storedRecord.h"

#include <tqbase2/system/log/detail.h>

#include <SQLiteCpp/Exception.h>
#include <sqlite3.h>

#include <algorithm>
#include <utility>

namespace lgb {

IDatabase::~IDatabase() = default;

}  // namespace lgb

namespace standalone {

namespace {

// Room that is made at once for a page; a longer one grows.
constexpr unsigned int usualPage = 100;

void logDamage(const std::string& file, std::int64_t number) {
    constexpr unsigned int error = 4;
    constexpr const char* channel = "libTqZelPlatform";
    if (tqbase2::system::log::detail::isEnabled(error, channel)) {
        tqbase2::system::log::detail::log(error, channel,
                                          file + ": record " + std::to_string(number) + " is damaged and left out");
    }
}

}  // namespace

template <typename Operation>
auto SqliteDatabase::guarded(Operation operation) {
    const std::lock_guard lock(mutex);
    try {
        return operation();
    } catch (const SQLite::Exception& exception) {
        refuse(file, exception);
    }
}

Statement SqliteDatabase::prepare(const std::string& sql) {
    return guarded([&] { return Statement(connection, sql); });
}

SqliteDatabase::SqliteDatabase(const std::string& path, std::uint32_t recordsKept)
    : file(path),
      capacity(recordsKept),
      connection(openLogbook(path, recordsKept)),
      transactions(guarded([this] { return TransactionStatements(connection, TransactionStatements::writing); })),
      selectPage(prepare(schema::selectRecords(schema::onPage))),
      selectNextNumber(prepare(schema::selectNextNumber)),
      insertRecord(prepare(schema::insertRecord)),
      deleteOldest(prepare(schema::deleteOldest)),
      selectCount(prepare(schema::selectCount)) {}

SqliteDatabase::~SqliteDatabase() {
    if (written) {
        emptyWriteAheadLog(connection);
    }
}

template <typename Change>
void SqliteDatabase::commit(Change change) {
    guarded([&] {
        const auto attempt = [&] {
            Transaction transaction(transactions);
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
        page.reserve(std::min(count, usualPage));
        while (selectPage.step()) {
            StoredRecord record = storedRecord(selectPage);
            if (record.intact) {
                page.push_back(std::move(record.content));
            } else {
                logDamage(file, record.number);
            }
        }
        return page;
    });
}

void SqliteDatabase::add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) {
    commit([&] {
        const std::int64_t number = nextNumber();
        insert(number, json, timestamp);
        keepUpTo(number);
    });
}

std::int64_t SqliteDatabase::addAll(const std::vector<lgb::DatabaseRecord>& records) {
    std::int64_t dropped = 0;
    commit([&] {
        const std::int64_t before = stored();
        std::int64_t number = nextNumber() - 1;
        for (const lgb::DatabaseRecord& record : records) {
            insert(++number, record.json, record.timestamp);
        }
        const std::int64_t all = stored();
        keepUpTo(number);
        dropped = std::min(before, all - stored());
    });
    return dropped;
}

std::int64_t SqliteDatabase::nextNumber() {
    const Use use(selectNextNumber);
    selectNextNumber.step();
    return selectNextNumber.number(0);
}

std::int64_t SqliteDatabase::stored() {
    const Use use(selectCount);
    selectCount.step();
    return selectCount.number(0);
}

void SqliteDatabase::insert(std::int64_t number, const std::string& json, const lgb::timestamp::Timestamp& timestamp) {
    const auto& [seconds, nanoseconds, time] = timestamp;
    insertRecord.bind(1, number);
    insertRecord.bind(2, seconds);
    insertRecord.bind(3, nanoseconds);
    insertRecord.bind(4, time);
    insertRecord.bind(5, json);
    insertRecord.bind(6, std::int64_t{checksum({number, seconds, nanoseconds, time, json})});
    insertRecord.run();
}

void SqliteDatabase::keepUpTo(std::int64_t number) {
    if (capacity > 0 && number > capacity) {
        deleteOldest.bind(1, number - capacity);
        deleteOldest.run();
    }
}

void SqliteDatabase::clear() {
    commit([&] {
        connection.exec(schema::rememberLastNumber);
        connection.exec(schema::deleteAll);
    });
}

unsigned int SqliteDatabase::count() {
    return guarded([&] { return static_cast<unsigned int>(stored()); });
}

}  // namespace standalone
