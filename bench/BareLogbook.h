#pragma once

#include <lgb/timestamp.h>
#include <standalone/checksum.h>

#include <sqlite3.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace bench {

/// SQLite's C interface with nothing around it but that failures throw.
class Statement {
public:
    Statement(sqlite3* connection, const char* sql);
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    ~Statement() { sqlite3_finalize(handle); }

    Statement& bind(int index, std::int64_t value);
    Statement& bind(int index, std::string_view text);  ///< the text must last until the next step
    Statement& bindBytes(int index, const standalone::LogbookId& bytes);
    bool step();  ///< whether there is a row

    void reset() { sqlite3_reset(handle); }

    /// Steps through without looking at a row.
    void run();

    std::int64_t number(int column) { return sqlite3_column_int64(handle, column); }

    std::string_view text(int column);

private:
    sqlite3_stmt* handle = nullptr;
};

/// Opened as the standalone platform does: what it looks at before it trusts a file, and its settings.
class Connection {
public:
    /// @param checkpointPages by how many pages the write-ahead log grows before it is written back
    Connection(const std::string& file, int checkpointPages);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    ~Connection() { sqlite3_close_v2(handle); }

    void execute(const std::string& sql) const;

    sqlite3* handle = nullptr;
};

/// Makes the tables of a logbook in a new file.
void makeFile(const std::string& file, int pageSize);

/// The floor below the standalone platform's database: the same file, statements and settings, each statement prepared
/// once. The check value of each record is part of it: without, damage would be shown as if it had happened.
class BareLogbook {
public:
    static constexpr int shippedCheckpointPages = 64;

    /// @param recordsKept beyond which adding drops the oldest; 0: all
    explicit BareLogbook(const std::string& file, std::int64_t recordsKept = 0,
                         int checkpointPages = shippedCheckpointPages);

    /// Adds samples in one transaction.
    void fill(std::int64_t records);

    /// @param row called with the stored document of each record, newest first
    template <typename Row>
    void fetch(std::int64_t offset, std::int64_t count, Row row) {
        selectPage.bind(1, offset).bind(2, count);
        while (selectPage.step()) {
            const standalone::NumberedRecord record{selectPage.number(0), selectPage.number(1), selectPage.number(2),
                                                    selectPage.text(3), selectPage.text(4)};
            if (standalone::checksum(record, id) != selectPage.number(5)) {
                throw std::runtime_error("a damaged record");
            }
            row(record.json);
        }
        selectPage.reset();
    }

    void add(const std::string& json, const lgb::timestamp::Timestamp& timestamp);
    void clear();
    std::int64_t count();

private:
    std::int64_t nextNumber();

    void insert(std::int64_t number, const std::string& json, const lgb::timestamp::Timestamp& timestamp);

    std::int64_t capacity;
    Connection connection;
    standalone::LogbookId id;
    Statement begin;
    Statement commit;
    Statement selectPage;
    Statement selectNewest;
    Statement insertRecord;
    Statement deleteOldest;
    Statement selectEnds;
    Statement updateLogbook;
    Statement deleteAll;
    Statement deleteAllLost;
};

}  // namespace bench
