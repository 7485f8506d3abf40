#include "Hurry.h"
#include "TemporaryFolder.h"

#include <standalone/SqliteDatabaseFactory.h>
#include <standalone/errors.h>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>
#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using standalone::SqliteDatabaseFactory;
using support::TemporaryFolder;

std::unique_ptr<lgb::IDatabase> openIn(const std::filesystem::path& folder) {
    return SqliteDatabaseFactory(folder).create("lgbTest", 0, 0);
}

void addText(lgb::IDatabase& database, const std::string& text) {
    database.add(text, {0, 0, ""});
}

std::vector<std::string> textsOf(lgb::IDatabase& database) {
    std::vector<std::string> texts;
    for (const lgb::DatabaseRecord& record : database.fetch(0, 100)) {
        texts.push_back(record.json);
    }
    return texts;
}

/// Keeps everybody from writing a log back, as whoever does so.
class WriteBackLock {
public:
    explicit WriteBackLock(const std::filesystem::path& file) : connection(file.string(), SQLite::OPEN_READWRITE) {
        connection.execAndGet("SELECT count(*) FROM record");
        sqlite3_file_control(connection.getHandle(), "main", SQLITE_FCNTL_FILE_POINTER, &database);
        EXPECT_EQ(database->pMethods->xShmLock(database, 1, 1, SQLITE_SHM_LOCK | SQLITE_SHM_EXCLUSIVE), SQLITE_OK);
    }

    void release() { database->pMethods->xShmLock(database, 1, 1, SQLITE_SHM_UNLOCK | SQLITE_SHM_EXCLUSIVE); }

private:
    SQLite::Database connection;
    sqlite3_file* database = nullptr;
};

TEST(SharedLog, HalfARecordInItMakesItNoOtherLogbooks) {
    const TemporaryFolder used;
    const TemporaryFolder left;
    addText(*openIn(used.path()), std::string(5000, 'x'));
    const auto database = openIn(used.path());
    database->clear();
    addText(*database, "half written");
    std::filesystem::copy(used.path(), left.path(), std::filesystem::copy_options::recursive);
    std::string log = support::contentOf(left / "lgbTest.db-wal");
    log.at(log.rfind("half written")) = '?';
    support::write(left / "lgbTest.db-wal", log);

    EXPECT_THAT(textsOf(*openIn(left.path())), testing::IsEmpty());
}

TEST(SharedLog, BeingWrittenBackByOthersKeepsTheFileFromGrowing) {
    const TemporaryFolder folder;
    addText(*openIn(folder.path()), "first");
    const std::filesystem::path file = folder / "lgbTest.db";
    WriteBackLock others(file);
    std::string refused;
    {
        const support::Hurry hurry;
        try {
            SqliteDatabaseFactory(folder.path()).resize("lgbTest", 10000);
        } catch (const standalone::DatabaseError& error) {
            refused = error.what();
        }
    }
    EXPECT_EQ(refused, file.string() + ": database is locked");
    others.release();
    EXPECT_EQ(SqliteDatabaseFactory(folder.path()).resize("lgbTest", 10000), 0);
}

TEST(SharedLog, BeingWrittenBackByOthersIsNoFullDisk) {
    const TemporaryFolder folder;
    const auto database = openIn(folder.path());
    addText(*database, "oldest");
    WriteBackLock others(folder / "lgbTest.db");
    const auto endsSoon = std::async(std::launch::async, [&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        others.release();
    });
    const std::string longText(200000, 'x');
    addText(*database, longText);

    EXPECT_THAT(textsOf(*database), testing::ElementsAre(longText, "oldest"));
}

}  // namespace
