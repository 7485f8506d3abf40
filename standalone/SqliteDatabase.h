#pragma once

#include "Transaction.h"

#include <lgb/IDatabase.h>

#include <SQLiteCpp/Database.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace standalone {

/// One logbook in one SQLite file. Records are numbered in the order of adding, without gaps, and no number is given
/// out twice; a page is a range of numbers, so that it costs the same at any offset.
class SqliteDatabase : public lgb::IDatabase {
public:
    /// @param path of the file, made when missing
    /// @param recordsKept beyond which adding drops the oldest; 0: all
    /// @throws DatabaseError, here and from every operation
    SqliteDatabase(const std::string& path, std::uint32_t recordsKept);

    SqliteDatabase(const SqliteDatabase&) = delete;
    SqliteDatabase& operator=(const SqliteDatabase&) = delete;
    ~SqliteDatabase() override;

    std::vector<lgb::DatabaseRecord> fetch(unsigned int offset, unsigned int count) override;
    void add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) override;
    /// Adds records, oldest first, in one transaction.
    /// @return how many of those stored before were dropped
    std::int64_t addAll(const std::vector<lgb::DatabaseRecord>& records);
    void clear() override;
    unsigned int count() override;

private:
    template <typename Operation>
    auto guarded(Operation operation);

    Statement prepare(const std::string& sql);

    /// Makes a change in one transaction, and once more with room made in the log when the disk is full.
    template <typename Change>
    void commit(Change change);

    std::int64_t nextNumber();
    std::int64_t stored();
    void insert(std::int64_t number, const std::string& json, const lgb::timestamp::Timestamp& timestamp);
    void keepUpTo(std::int64_t number);

    std::mutex mutex;  // statements are not to be shared
    std::string file;
    std::int64_t capacity;
    SQLite::Database connection;
    TransactionStatements transactions;
    Statement selectPage;
    Statement selectNextNumber;
    Statement insertRecord;
    Statement deleteOldest;
    Statement selectCount;
    bool written = false;
};

}  // namespace standalone
