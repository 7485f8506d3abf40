#pragma once

#include <lgb/DatabaseFactory.h>
#include <lgb/IDatabase.h>
#include <lgb/timestamp.h>
#include <tqbase2/system/Exception.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// A platform in memory that keeps what the library asks of it and fails when told to. One state for the process, made
/// new for each test by LibraryTest.
namespace recording {

struct LogLine {
    unsigned int level;
    std::string channel;
    std::string message;
};

struct Platform {
    unsigned int lowestLevel = 1;  ///< levels below it are off; 5: all are
    std::vector<LogLine> log;

    lgb::timestamp::Timestamp time{1700000000, 123456789, "a quarter past ten"};
    int clockReads = 0;
    bool clockFails = false;

    bool emptyTextIsNull = false;  ///< else the JSON parser rejects it, as it rejects all that is not JSON
    int jsonTextsParsed = 0;
    std::function<void()> onParse = [] {};
    int jsonTextsWritten = 0;
    int errorMessagesExtracted = 0;

    std::vector<std::string> databases;  ///< "open lgbCustomer 6381 500", "close lgbCustomer", in the order of doing
    std::string databaseThatFails;       ///< the name of the one that can't be opened
};

Platform& platform();

/// What the JSON parser throws; what() and the extracted message say "not JSON".
class JsonError : public tqbase2::system::Exception {
public:
    const char* what() const noexcept override { return "not JSON"; }
};

/// What the clock and the databases throw. No platform exception, as it comes from outside.
class Failure : public std::exception {
public:
    const char* what() const noexcept override { return "told to fail"; }
};

/// A database in memory, newest record first.
class MemoryDatabase : public lgb::IDatabase {
public:
    /// @param databaseName by which Platform::databases tells of its end; empty: not at all
    explicit MemoryDatabase(std::string databaseName = "") : name(std::move(databaseName)) {}

    MemoryDatabase(const MemoryDatabase&) = delete;
    MemoryDatabase& operator=(const MemoryDatabase&) = delete;
    ~MemoryDatabase() override;

    std::vector<lgb::DatabaseRecord> fetch(unsigned int offset, unsigned int count) override;
    void add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) override;
    void clear() override;
    unsigned int count() override;

    std::vector<lgb::DatabaseRecord> records;
    bool fails = false;  ///< every operation throws a Failure
    std::function<void()> onFetch = [] {};

private:
    void failWhenTold() const;

    std::string name;
};

}  // namespace recording
