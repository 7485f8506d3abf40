#include "DatabaseContract.h"
#include "JournalOfOthers.h"
#include "SqliteLogbook.h"
#include "SystemCall.h"
#include "calls.h"

#include <standalone/LogbookReader.h>
#include <tqbase2/system/Exception.h>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <future>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using standalone::SqliteDatabaseFactory;
using support::TemporaryFolder;

/// A database whose folder goes with it.
class OwnFolderDatabase : public lgb::IDatabase {
public:
    std::vector<lgb::DatabaseRecord> fetch(unsigned int offset, unsigned int count) override {
        return database->fetch(offset, count);
    }

    void add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) override {
        database->add(json, timestamp);
    }

    void clear() override { database->clear(); }

    unsigned int count() override { return database->count(); }

private:
    TemporaryFolder folder;
    std::unique_ptr<lgb::IDatabase> database = SqliteDatabaseFactory(folder.path()).create("lgbTest", 0, 0);
};

INSTANTIATE_TEST_SUITE_P(Sqlite, DatabaseContract,
                         testing::Values(DatabaseUnderTest{"File",
                                                           [] { return std::make_unique<OwnFolderDatabase>(); }}),
                         nameOfDatabase);

using SqliteDatabase = SqliteLogbook;
using standalone::Failure;

TEST_F(SqliteDatabase, KeepsRecordsWhenClosed) {
    add(*open(), "a");
    EXPECT_EQ(stored(), Texts{"a"});
}

TEST_F(SqliteDatabase, GivesNewestFirstByOrderOfAddingWhateverTheClockSaid) {
    const auto database = open();
    add(*database, "first", 300);
    add(*database, "second", 100);
    add(*database, "third", 200);
    EXPECT_EQ(stored(), (Texts{"third", "second", "first"}));
}

TEST_F(SqliteDatabase, DropsTheOldestWhenFull) {
    addNumbers(*open(3), 1, 5);
    EXPECT_EQ(stored(), (Texts{"5", "4", "3"}));
}

TEST_F(SqliteDatabase, OfCapacityZeroKeepsEverything) {
    addNumbers(*open(0), 1, 2000);
    EXPECT_EQ(stored(), countingDown(2000, 1));
}

TEST_F(SqliteDatabase, KeepsItsCapacityWhenOpenedWithASmallerOne) {
    addNumbers(*open(10), 1, 10);
    add(*open(2), "11");
    EXPECT_EQ(stored(), countingDown(11, 2));
}

TEST_F(SqliteDatabase, GrowsWhenOpenedWithALargerCapacity) {
    addNumbers(*open(2), 1, 5);
    addNumbers(*open(4), 6, 10);
    EXPECT_EQ(stored(), countingDown(10, 7));
    addNumbers(*open(0), 11, 20);
    EXPECT_EQ(stored(), countingDown(20, 7));
}

TEST_F(SqliteDatabase, KeepsItsCapacityForThoseWhoAskForNone) {
    addNumbers(*open(2), 1, 5);
    addNumbers(*factory().create("lgbTest", 0, 4), 6, 10);
    EXPECT_EQ(stored(), countingDown(10, 9));
}

TEST_F(SqliteDatabase, IsResizedOnRequestAndSaysHowManyRecordsWent) {
    addNumbers(*open(10), 1, 10);
    EXPECT_EQ(factory().resize("lgbTest", 4), 6);
    EXPECT_EQ(stored(), countingDown(10, 7));
    EXPECT_EQ(factory().resize("lgbTest", 0), 0);
    addNumbers(*factory().create("lgbTest", 0, 0), 11, 30);
    EXPECT_EQ(stored(), countingDown(30, 7));
}

TEST_F(SqliteDatabase, DropsTheOldestAfterAClearToo) {
    const auto database = open(2);
    addNumbers(*database, 1, 5);
    database->clear();
    addNumbers(*database, 6, 9);
    EXPECT_EQ(stored(), (Texts{"9", "8"}));
}

TEST_F(SqliteDatabase, NeverGivesANumberOutTwice) {
    addNumbers(*open(), 1, 3);
    open()->clear();
    open()->clear();
    add(*open(), "4");
    SQLite::Database raw(file.string());
    EXPECT_EQ(raw.execAndGet("SELECT number FROM record").getInt(), 4);
}

TEST_F(SqliteDatabase, OfCapacity500Keeps500OutOf20000InAFileThatStopsGrowing) {
    {
        const auto database = open(500);
        addNumbers(*database, 1, 5000);
        const auto size = std::filesystem::file_size(file);
        const auto logBefore = std::filesystem::file_size(log);
        addNumbers(*database, 5001, 20000);
        EXPECT_EQ(std::filesystem::file_size(file), size);
        constexpr std::uintmax_t oneTransaction = 4 * std::uintmax_t{4096};
        EXPECT_LE(std::filesystem::file_size(log), logBefore + oneTransaction);
        EXPECT_EQ(database->count(), 500u);
    }
    EXPECT_EQ(stored(), countingDown(20000, 19501));
}

TEST_F(SqliteDatabase, MakesFilesOfPagesThatHoldAFewRecords) {
    add(*open(), "a");
    EXPECT_EQ(SQLite::Database(file.string()).execAndGet("PRAGMA page_size").getInt(), 1024);
}

TEST_F(SqliteDatabase, GoesOnWithAFileOfLargerPages) {
    {
        addNumbers(*open(), 1, 3);
        SQLite::Database older(file.string(), SQLite::OPEN_READWRITE);
        older.exec("PRAGMA journal_mode = DELETE; PRAGMA page_size = 4096; VACUUM");
    }
    addNumbers(*open(), 4, 500);
    EXPECT_EQ(SQLite::Database(file.string()).execAndGet("PRAGMA page_size").getInt(), 4096);
    EXPECT_EQ(stored(), countingDown(500, 1));
}

TEST_F(SqliteDatabase, SyncsEachRecordIntoAWriteAheadLog) {
    const auto database = open();
    SQLite::Database raw(file.string());
    EXPECT_EQ(raw.execAndGet("PRAGMA journal_mode").getString(), "wal");
    add(*database, "a");
    for (const char* text : {"b", "c", "d"}) {
        const int before = support::syncs;
        add(*database, text);
        EXPECT_EQ(support::syncs, before + 1) << text;
    }
}

TEST_F(SqliteDatabase, KeepsWhatWasAddedWhenTheWriterIsKilled) {
    int acknowledged[2];
    ASSERT_EQ(pipe(acknowledged), 0);
    const pid_t writer = fork();
    if (writer == 0) {
        const auto database = open();
        for (int number = 1;; ++number) {
            add(*database, std::to_string(number));
            if (write(acknowledged[1], "x", 1) != 1) {
                _exit(1);
            }
        }
    }
    char byte = 0;
    for (int number = 1; number <= 50; ++number) {
        ASSERT_EQ(read(acknowledged[0], &byte, 1), 1);
    }
    kill(writer, SIGKILL);
    waitpid(writer, nullptr, 0);
    close(acknowledged[1]);
    int total = 50;
    while (read(acknowledged[0], &byte, 1) == 1) {
        ++total;
    }
    close(acknowledged[0]);

    const Texts texts = stored();
    const int last = std::stoi(texts.front());
    EXPECT_GE(last, total);
    EXPECT_LE(last, total + 1);
    EXPECT_EQ(texts, countingDown(last, 1));
}

TEST_F(SqliteDatabase, ServesSeveralThreads) {
    const auto database = open();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&database, thread] {
            for (int number = 0; number < 100; ++number) {
                add(*database, std::to_string(thread * 100 + number));
                database->fetch(0, 5);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    Texts texts = stored();
    std::sort(texts.begin(), texts.end(), [](const auto& a, const auto& b) { return std::stoi(a) > std::stoi(b); });
    EXPECT_EQ(texts, countingDown(399, 0));
}

TEST_F(SqliteDatabase, ShowsWhatAnotherConnectionAdds) {
    const auto viewer = open();
    const auto device = open();
    add(*device, "a");
    EXPECT_EQ(viewer->count(), 1u);
    EXPECT_EQ(viewer->fetch(0, 1)[0].json, "a");
}

TEST_F(SqliteDatabase, IsMadeOnceBySeveralProcessesAtATime) {
    constexpr int processes = 8;
    for (int process = 0; process < processes; ++process) {
        if (fork() == 0) {
            try {
                add(*open(), "a");
                _exit(0);
            } catch (const std::exception& exception) {
                std::fprintf(stderr, "%s\n", exception.what());
                _exit(1);
            }
        }
    }
    for (int process = 0; process < processes; ++process) {
        int status = -1;
        wait(&status);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(stored(), Texts(processes, "a"));
}

TEST_F(SqliteDatabase, WaitsForALock) {
    const auto database = open();
    SQLite::Database other(file.string(), SQLite::OPEN_READWRITE);
    std::future<void> waiting;
    {
        SQLite::Transaction transaction(other, SQLite::TransactionBehavior::IMMEDIATE);
        waiting = std::async(std::launch::async, [&database] { add(*database, "a"); });
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_EQ(other.execAndGet("SELECT count(*) FROM record").getInt(), 0);
    }
    EXPECT_NO_THROW(waiting.get());
    EXPECT_EQ(stored(), Texts{"a"});
}

TEST_F(SqliteDatabase, GivesUpOnALockByName) {
    const auto database = open();
    SQLite::Database other(file.string(), SQLite::OPEN_READWRITE);
    const SQLite::Transaction transaction(other, SQLite::TransactionBehavior::IMMEDIATE);
    try {
        add(*database, "a");
        FAIL() << "added under a lock";
    } catch (const tqbase2::system::Exception& exception) {
        EXPECT_STREQ(exception.what(), (file.string() + ": database is locked").c_str());
    }
}

TEST_F(SqliteDatabase, RefusesAFileThatIsNoDatabaseAndLeavesItAlone) {
    const std::string letter(5000, 'x');
    support::write(file, letter);
    EXPECT_EQ(refusal(), (Refusal{Failure::Foreign, file.string() + ": file is not a database"}));
    EXPECT_EQ(support::contentOf(file), letter);
}

TEST_F(SqliteDatabase, RefusesAForeignDatabaseAndLeavesItAlone) {
    SQLite::Database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec("CREATE TABLE cats (name TEXT)");
    const std::string before = support::contentOf(file);
    EXPECT_EQ(refusal(), (Refusal{Failure::Foreign, file.string() + ": an SQLite database, but not a logbook"}));
    EXPECT_EQ(support::contentOf(file), before);
}

TEST_F(SqliteDatabase, RefusesAFileOfANewerSchemaAndLeavesItAlone) {
    add(*open(), "a");
    execute("PRAGMA user_version = 3; CREATE TABLE novelty (id INTEGER)");
    const std::string before = support::contentOf(file);
    EXPECT_EQ(refusal(), (Refusal{Failure::Newer, file.string() + ": written by schema 3, this program reads 2"}));
    EXPECT_EQ(support::contentOf(file), before);
}

TEST_F(SqliteDatabase, RefusesARollbackJournalBesideIt) {
    add(*open(), "a");
    support::write(file.string() + "-journal", "x");
    EXPECT_EQ(refusal(), (Refusal{Failure::Foreign,
                                  file.string() + "-journal: stands beside a logbook, but is none of its files"}));
}

TEST_F(SqliteDatabase, CarriesOutNoRollbackJournalThatAppearsMeanwhile) {
    add(*open(), "a");
    const std::filesystem::path precious = folder / "precious";
    support::write(precious, "precious");
    for (const bool isWriter : {true, false}) {
        const support::JournalOfOthers race("lgbTest.db", precious);
        try {
            isWriter ? static_cast<void>(open()) : static_cast<void>(standalone::LogbookReader(file));
        } catch (const standalone::DatabaseError& error) {
            EXPECT_EQ(error.kind(), Failure::Foreign) << error.what();
        }
        EXPECT_EQ(support::contentOf(precious), "precious") << isWriter;
        std::filesystem::remove(file.string() + "-journal");
    }
}

TEST_F(SqliteDatabase, RefusesWhatIsNoRegularFile) {
    std::filesystem::create_directory(file);
    EXPECT_EQ(refusal(), (Refusal{Failure::Foreign, file.string() + ": is no regular file"}));
    std::filesystem::remove(file);
    std::filesystem::create_symlink(folder / "elsewhere.db", file);
    EXPECT_EQ(refusal(), (Refusal{Failure::Foreign, file.string() + ": is no regular file"}));
}

using WriteCall = support::SystemCall<ssize_t(int descriptor, const void* bytes, std::size_t count, off_t offset)>;

/// On a full disk files keep the space that they have, be it within their size or beyond, and get no more.
ssize_t writeToAFullDisk(int descriptor, const void* bytes, std::size_t count, off_t offset) {
    struct stat status {};

    fstat(descriptor, &status);
    constexpr off_t blockBytes = 512;
    if (offset + static_cast<off_t>(count) > std::max(status.st_size, status.st_blocks * blockBytes)) {
        errno = ENOSPC;
        return -1;
    }
    return WriteCall::itself(descriptor, bytes, count, offset);
}

/// A logbook of 500 records whose disk has been full since it was opened.
class SqliteDatabaseOnAFullDisk : public SqliteDatabase {
protected:
    /// Adds 1, 2, 3... until the log is full of what a reader has not let go. Returns how many there was room for.
    int fillLog() {
        SQLite::Database other(file.string());
        const SQLite::Transaction reading(other);
        EXPECT_EQ(other.execAndGet("SELECT count(*) FROM record").getInt(), 0);
        int added = 0;
        try {
            for (; added < 500; ++added) {
                add(*database, std::to_string(added + 1));
            }
        } catch (const standalone::DatabaseError& error) {
            EXPECT_EQ(error.kind(), Failure::Full);
            EXPECT_EQ(error.what(), file.string() + ": database or disk is full");
        }
        EXPECT_LT(added, 500);
        return added;
    }

    const std::unique_ptr<lgb::IDatabase> database = open(500);
    const WriteCall fullDisk{{"pwrite64", "pwrite"}, writeToAFullDisk};
};

TEST_F(SqliteDatabaseOnAFullDisk, GoesOnInTheSpaceSetAside) {
    addNumbers(*database, 1, 2000);
    EXPECT_EQ(stored(), countingDown(2000, 1501));
}

TEST_F(SqliteDatabaseOnAFullDisk, LetsTheOldestMakeRoomForLargerRecordsAndSaysSoOnce) {
    addNumbers(*database, 1, 500);
    const std::string large(2000, 'x');
    const std::string told = toldBy([&] {
        for (int number = 501; number <= 1000; ++number) {
            add(*database, std::to_string(number) + large);
        }
    });
    EXPECT_THAT(told, testing::EndsWith("warning libTqZelPlatform: " + file.string() +
                                        ": the disk is full; the oldest records make room for the newest\n"));
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1);
    const Texts kept = stored();
    EXPECT_GT(kept.size(), 50u);
    for (std::size_t i = 0; i < kept.size(); ++i) {
        EXPECT_EQ(kept[i], std::to_string(1000 - i) + large);
    }
}

TEST_F(SqliteDatabaseOnAFullDisk, RefusesARecordThatDoesNotFitAloneAndKeepsTheOthers) {
    addNumbers(*database, 1, 100);
    EXPECT_EQ(refusalOf([&] { add(*database, std::string(1000000, 'x')); }),
              (Refusal{Failure::Full, file.string() + ": database or disk is full"}));
    EXPECT_EQ(stored(), countingDown(100, 1));
}

TEST_F(SqliteDatabaseOnAFullDisk, AddsAllAtOnceOrNone) {
    addNumbers(*database, 1, 10);
    EXPECT_EQ(refusalOf([&] {
                  factory().addAll("lgbTest", 500, {{{}, "11"}, {{}, std::string(1000000, 'x')}});
              })->first,
              Failure::Full);
    EXPECT_EQ(stored(), countingDown(10, 1));
}

TEST_F(SqliteDatabaseOnAFullDisk, AddsOnceTheReaderWhoHeldUpTheLogIsGone) {
    const int added = fillLog();
    addNumbers(*database, added + 1, added + 100);
    EXPECT_EQ(stored(), countingDown(added + 100, 1));
}

TEST_F(SqliteDatabaseOnAFullDisk, AddsManyAtOnceOnceTheReaderWhoHeldUpTheLogIsGone) {
    const int added = fillLog();
    const std::string next = std::to_string(added + 1);
    factory().addAll("lgbTest", 500, {{{}, next}});
    EXPECT_EQ(stored(), countingDown(added + 1, 1));
}

TEST_F(SqliteDatabaseOnAFullDisk, ClearsOnceTheReaderWhoHeldUpTheLogIsGone) {
    fillLog();
    database->clear();
    EXPECT_EQ(stored(), Texts{});
}

int writesThatFail = 0;

ssize_t writeToAFailingDisk(int descriptor, const void* bytes, std::size_t count, off_t offset) {
    if (writesThatFail > 0) {
        --writesThatFail;
        errno = EIO;
        return -1;
    }
    return WriteCall::itself(descriptor, bytes, count, offset);
}

TEST_F(SqliteDatabase, TriesNothingAgainOnAFailingDiskAndTakesTheNextRecord) {
    const auto database = open();
    const WriteCall failingDisk({"pwrite64", "pwrite"}, writeToAFailingDisk);
    writesThatFail = 1;
    try {
        add(*database, "lost");
        FAIL() << "tried again";
    } catch (const standalone::DatabaseError& error) {
        EXPECT_EQ(error.what(), file.string() + ": disk I/O error");
    }
    add(*database, "kept");
    EXPECT_EQ(stored(), Texts{"kept"});
}

TEST_F(SqliteDatabase, WaitsForSomebodyElseBeforeItSwitchesToTheLog) {
    add(*open(), "a");
    execute("PRAGMA journal_mode = DELETE");
    SQLite::Database other(file.string(), SQLite::OPEN_READWRITE);
    std::optional<SQLite::Transaction> elsewhere(std::in_place, other, SQLite::TransactionBehavior::IMMEDIATE);
    auto waiting = std::async(std::launch::async, [this] { add(*open(), "b"); });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
    elsewhere.reset();
    EXPECT_NO_THROW(waiting.get());
    EXPECT_EQ(stored(), (Texts{"b", "a"}));
}

TEST_F(SqliteDatabase, SetsSpaceAsideForAFullLogbook) {
    const auto database = open(500);
    EXPECT_GE(std::filesystem::file_size(file), 500u * 400u);
    EXPECT_GE(support::allottedTo(log), logSize);
}

TEST_F(SqliteDatabase, KeepsTheSpaceOfTheLogAndMarksItAsEmptyWhenClosed) {
    addNumbers(*open(), 1, 300);
    EXPECT_GE(support::allottedTo(log), logSize);
    EXPECT_EQ(support::contentOf(log).substr(0, 6), std::string("TqZL\x2c\x01", 6)) << "300 was the last number";
    SQLite::Database alone("file:" + file.string() + "?immutable=1", SQLite::OPEN_READONLY | SQLite::OPEN_URI);
    EXPECT_EQ(alone.execAndGet("SELECT count(*) FROM record").getInt(), 300) << "it needs nothing of the log";
}

TEST_F(SqliteDatabase, ClosedLeavesTheLogToOthersThatUseIt) {
    const auto other = open();
    addNumbers(*open(), 1, 100);
    EXPECT_EQ(other->count(), 100u);
    add(*other, "101");
    EXPECT_EQ(stored(), countingDown(101, 1));
}

TEST_F(SqliteDatabase, MakesTheFolderWhenMissing) {
    SqliteDatabaseFactory(folder / "a/b").create("lgbTest", 0, 0);
    EXPECT_TRUE(std::filesystem::exists(folder / "a/b/lgbTest.db"));
}

TEST_F(SqliteDatabase, NamesAFolderThatCanNotBeMade) {
    support::write(folder / "file", "");
    try {
        SqliteDatabaseFactory(folder / "file/folder").create("lgbTest", 0, 0);
        FAIL() << "made a folder in a file";
    } catch (const standalone::DatabaseError& error) {
        EXPECT_EQ(error.what(), (folder / "file/folder").string() + ": can't make the folder: Not a directory");
    }
}

class LogbookFolder : public testing::Test {
protected:
    LogbookFolder() {
        for (const char* variable : {"TQZEL_LOGBOOK_DIR", "STATE_DIRECTORY", "XDG_STATE_HOME", "HOME"}) {
            unsetenv(variable);
        }
    }
};

TEST_F(LogbookFolder, IsTheFirstThatTheEnvironmentNames) {
    setenv("HOME", "/home/me", 1);
    EXPECT_EQ(standalone::logbookFolder(), "/home/me/.local/state/tqzel-logbook");
    setenv("XDG_STATE_HOME", "/state", 1);
    EXPECT_EQ(standalone::logbookFolder(), "/state/tqzel-logbook");
    setenv("STATE_DIRECTORY", "/var/lib/amplifier", 1);
    EXPECT_EQ(standalone::logbookFolder(), "/var/lib/amplifier");
    setenv("TQZEL_LOGBOOK_DIR", "/logbooks", 1);
    EXPECT_EQ(standalone::logbookFolder(), "/logbooks");
}

TEST_F(LogbookFolder, IsNotNamedByAnEmptyVariable) {
    setenv("HOME", "/home/me", 1);
    setenv("TQZEL_LOGBOOK_DIR", "", 1);
    EXPECT_EQ(standalone::logbookFolder(), "/home/me/.local/state/tqzel-logbook");
}

TEST_F(LogbookFolder, MissingIsAnErrorThatSaysWhatToSet) {
    try {
        standalone::logbookFolder();
        FAIL() << "found a folder";
    } catch (const standalone::DatabaseError& error) {
        EXPECT_STREQ(error.what(),
                     "no folder for the logbooks: none of TQZEL_LOGBOOK_DIR, STATE_DIRECTORY, "
                     "XDG_STATE_HOME and HOME is set");
    }
}

TEST_F(LogbookFolder, IsWhereThePlatformsOwnFactoryPutsItsFiles) {
    const TemporaryFolder folder;
    setenv("TQZEL_LOGBOOK_DIR", folder.path().c_str(), 1);
    lgb::DatabaseFactory().create("lgbTest", 0, 0);
    EXPECT_TRUE(std::filesystem::exists(folder / "lgbTest.db"));
}

}  // namespace
