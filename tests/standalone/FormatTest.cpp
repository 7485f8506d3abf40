// The files of golden/ were written by the first version: a logbook of 12 records that was cleared once and healed
// once, and whose newest two records are still in the log, as its writer was killed. Every version must read them.

#include "SqliteLogbook.h"

#include <standalone/LogbookReader.h>

#include <SQLiteCpp/Database.h>

namespace {

using standalone::LogbookReader;

/// The first version's logbook, and what was put into it.
class GoldenLogbook : public testing::Test {
protected:
    GoldenLogbook() {
        for (const std::string end : {"", "-wal"}) {
            std::filesystem::copy_file(std::string(TQZEL_GOLDEN_FOLDER "/lgbGolden.db") + end, file.string() + end);
        }
    }

    /// Every fourth one is long enough for further pages.
    static std::string textOf(int number) {
        const std::string begin = "{\"n\":" + std::to_string(number);
        return number % 4 == 0
                   ? begin + ",\"text\":\"" + std::string(2500, static_cast<char>('a' + number % 26)) + "\"}"
                   : begin + '}';
    }

    std::unique_ptr<lgb::IDatabase> open() const {
        return standalone::SqliteDatabaseFactory(folder.path()).create("lgbGolden", 0, 12);
    }

    support::TemporaryFolder folder;
    const std::filesystem::path file = folder / "lgbGolden.db";
};

TEST_F(GoldenLogbook, GivesBackWhatWasAdded) {
    const auto records = open()->fetch(0, 100);
    ASSERT_EQ(records.size(), 12u);
    auto record = records.begin();
    for (int number = 22; number >= 10; --number) {
        if (number == 13) {
            continue;  // lost
        }
        EXPECT_EQ(record->json, textOf(number));
        EXPECT_EQ(record->timestamp.seconds, 1795284000 + 60 * number);
        EXPECT_EQ(record->timestamp.nanoseconds, number % 2 == 0 ? 0 : 123456789);
        EXPECT_EQ(record->timestamp.text, "2026-11-21 18:" + std::to_string(10 + number) + ":00 +0000");
        ++record;
    }
}

TEST_F(GoldenLogbook, TellsWhatItIs) {
    open();
    const auto description = LogbookReader(file).description();
    EXPECT_EQ(description.id, "b759e5a0205ce080955ea7bc096f42ee");
    EXPECT_EQ(description.capacity, 12u);
    EXPECT_EQ(description.cleared, 5);
    ASSERT_EQ(description.lost.size(), 1u);
    EXPECT_EQ(description.lost[0].first, 13);
    EXPECT_EQ(description.lost[0].last, 13);
    EXPECT_EQ(description.lost[0].found, 1795332605);
}

TEST_F(GoldenLogbook, GoesOn) {
    open()->add("the next", {});
    LogbookReader reader(file);
    EXPECT_EQ(reader.before(INT64_MAX, 1)[0].number, 23);
    EXPECT_EQ(reader.count(), 12);
    EXPECT_TRUE(standalone::structuralDamage(file).empty());
}

using Format = SqliteLogbook;

TEST_F(Format, KeepsTheTablesOfTheFirstVersion) {
    open();
    SQLite::Database made(file.string());
    const char* const tables =
        "SELECT group_concat(type || ' ' || name || ' ' || rootpage || ' ' || ifnull(sql, '')) "
        "FROM sqlite_master";
    SQLite::Database first("file:" TQZEL_GOLDEN_FOLDER "/lgbGolden.db?immutable=1",
                           SQLite::OPEN_READONLY | SQLite::OPEN_URI);
    EXPECT_EQ(made.execAndGet(tables).getString(), first.execAndGet(tables).getString());
    for (const char* const setting : {"application_id", "user_version", "page_size", "encoding"}) {
        EXPECT_EQ(made.execAndGet(std::string("PRAGMA ") + setting).getString(),
                  first.execAndGet(std::string("PRAGMA ") + setting).getString())
            << setting;
    }
}

}  // namespace
