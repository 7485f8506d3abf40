#include "BareLogbook.h"

#include "samples.h"

#include <standalone/schema.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>

namespace bench {

namespace {

namespace schema = standalone::schema;

void require(bool holds, sqlite3* connection) {
    if (!holds) {
        throw std::runtime_error(sqlite3_errmsg(connection));
    }
}

}  // namespace

Statement::Statement(sqlite3* connection, const char* sql) {
    require(sqlite3_prepare_v2(connection, sql, -1, &handle, nullptr) == SQLITE_OK, connection);
}

Statement& Statement::bind(int index, std::int64_t value) {
    require(sqlite3_bind_int64(handle, index, value) == SQLITE_OK, sqlite3_db_handle(handle));
    return *this;
}

Statement& Statement::bind(int index, std::string_view text) {
    const int outcome = sqlite3_bind_text(handle, index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    require(outcome == SQLITE_OK, sqlite3_db_handle(handle));
    return *this;
}

Statement& Statement::bindBytes(int index, const standalone::LogbookId& bytes) {
    const int outcome = sqlite3_bind_blob(handle, index, bytes.data(), static_cast<int>(bytes.size()), SQLITE_STATIC);
    require(outcome == SQLITE_OK, sqlite3_db_handle(handle));
    return *this;
}

bool Statement::step() {
    const int outcome = sqlite3_step(handle);
    require(outcome == SQLITE_ROW || outcome == SQLITE_DONE, sqlite3_db_handle(handle));
    return outcome == SQLITE_ROW;
}

void Statement::run() {
    while (step()) {
    }
    reset();
}

std::string_view Statement::text(int column) {
    const void* const bytes = sqlite3_column_blob(handle, column);
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(handle, column))};
}

Connection::Connection(const std::string& file, int checkpointPages) {
    require(sqlite3_open(file.c_str(), &handle) == SQLITE_OK, handle);
    sqlite3_busy_timeout(handle, 5000);
    execute("BEGIN");
    execute("PRAGMA application_id");
    execute("PRAGMA user_version");
    execute("PRAGMA quick_check(1)");
    execute(schema::selectLogbook);
    execute(schema::selectLost);
    execute(schema::selectNumbers);
    execute("COMMIT");
    execute("PRAGMA journal_mode = WAL");
    execute("PRAGMA synchronous = FULL");
    execute("PRAGMA secure_delete = OFF");
    execute("PRAGMA wal_autocheckpoint = " + std::to_string(checkpointPages));
}

void Connection::execute(const std::string& sql) const {
    require(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, handle);
}

void makeFile(const std::string& file, int pageSize) {
    sqlite3* connection = nullptr;
    require(sqlite3_open(file.c_str(), &connection) == SQLITE_OK, connection);
    std::string sql = "PRAGMA page_size = " + std::to_string(pageSize) + "; BEGIN;";
    for (const schema::Table& table : schema::tables) {
        sql += table.sql == nullptr ? "" : table.sql + std::string(";");
    }
    sql += "COMMIT";
    require(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, connection);
    {
        constexpr standalone::LogbookId id{};
        Statement insertLogbook(connection, schema::insertLogbook);
        insertLogbook.bindBytes(1, id).bind(2, 0).bind(3, 0).bind(4, standalone::checksum(id, 0, 0)).run();
    }
    sqlite3_close(connection);
}

namespace {

standalone::LogbookId idIn(const Connection& connection) {
    standalone::LogbookId id{};
    Statement select(connection.handle, schema::selectLogbook);
    select.step();
    const std::string_view bytes = select.text(0);
    std::copy(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(id.size()), id.begin());
    return id;
}

}  // namespace

BareLogbook::BareLogbook(const std::string& file, std::int64_t recordsKept, int checkpointPages)
    : capacity(recordsKept),
      connection(file, checkpointPages),
      id(idIn(connection)),
      begin(connection.handle, "BEGIN IMMEDIATE"),
      commit(connection.handle, "COMMIT"),
      selectPage(connection.handle, schema::selectRecords(schema::onPage).c_str()),
      selectNewest(connection.handle, "SELECT (SELECT max(number) FROM record), cleared FROM logbook"),
      insertRecord(connection.handle, schema::insertRecord),
      deleteOldest(connection.handle, schema::deleteOldest),
      selectEnds(connection.handle, "SELECT (SELECT min(number) FROM record), (SELECT max(number) FROM record)"),
      updateLogbook(connection.handle, schema::updateLogbook),
      deleteAll(connection.handle, schema::deleteAll),
      deleteAllLost(connection.handle, schema::deleteAllLost) {}

void BareLogbook::fill(std::int64_t records) {
    begin.run();
    const std::int64_t first = nextNumber();
    for (std::int64_t number = first; number < first + records; ++number) {
        const std::string& json = sampleOf(static_cast<std::uint64_t>(number)).json;
        insert(number, json, sampleTime());
    }
    commit.run();
}

void BareLogbook::add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) {
    begin.run();
    const std::int64_t number = nextNumber();
    insert(number, json, timestamp);
    if (capacity > 0 && number > capacity) {
        deleteOldest.bind(1, number - capacity).run();
    }
    commit.run();
}

std::int64_t BareLogbook::nextNumber() {
    selectNewest.step();
    const std::int64_t number = std::max(selectNewest.number(0), selectNewest.number(1)) + 1;
    selectNewest.reset();
    return number;
}

void BareLogbook::insert(std::int64_t number, const std::string& json, const lgb::timestamp::Timestamp& timestamp) {
    const auto& [seconds, nanoseconds, time] = timestamp;
    insertRecord.bind(1, number).bind(2, seconds).bind(3, nanoseconds).bind(4, time).bind(5, json);
    insertRecord.bind(6, standalone::checksum({number, seconds, nanoseconds, time, json}, id));
    insertRecord.run();
}

void BareLogbook::clear() {
    begin.run();
    const std::int64_t newest = nextNumber() - 1;
    updateLogbook.bind(1, 0).bind(2, newest).bind(3, standalone::checksum(id, 0, newest)).run();
    deleteAll.run();
    deleteAllLost.run();
    commit.run();
}

std::int64_t BareLogbook::count() {
    selectEnds.step();
    const std::int64_t records = selectEnds.number(1) == 0 ? 0 : selectEnds.number(1) - selectEnds.number(0) + 1;
    selectEnds.reset();
    return records;
}

}  // namespace bench
