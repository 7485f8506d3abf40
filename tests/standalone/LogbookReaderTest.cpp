#include "Meanwhile.h"
#include "TemporaryFolder.h"
#include "execute.h"

#include <standalone/LogbookReader.h>
#include <standalone/SqliteDatabaseFactory.h>
#include <standalone/errors.h>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using standalone::LogbookReader;
using standalone::SqliteDatabaseFactory;
using standalone::StoredRecord;
using testing::ElementsAre;
using testing::ThrowsMessage;

constexpr std::int64_t newest = std::numeric_limits<std::int64_t>::max();

/// The logbook of each test is lgbTest.db in a folder of its own.
class ReadLogbook : public testing::Test {
protected:
    std::unique_ptr<lgb::IDatabase> open() const {
        return SqliteDatabaseFactory(folder.path()).create("lgbTest", 0, 3);
    }

    /// Records with the texts "1", "2" and so on, made a minute apart.
    static void add(lgb::IDatabase& database, int from, int to) {
        for (int number = from; number <= to; ++number) {
            database.add(std::to_string(number), {std::int64_t{60} * number, 0, ""});
        }
    }

    void addAndClose(int from, int to) const { add(*open(), from, to); }

    static std::vector<std::string> texts(const std::vector<StoredRecord>& records) {
        std::vector<std::string> texts;
        for (const StoredRecord& record : records) {
            EXPECT_EQ(std::to_string(record.number), record.content.json);
            EXPECT_TRUE(record.intact);
            texts.push_back(record.content.json);
        }
        return texts;
    }

    using Files = std::map<std::string, std::string>;

    Files files() const { return support::filesOf(folder.path()); }

    std::string refusal() const { return refusalOf(file); }

    static std::string refusalOf(const std::filesystem::path& path) {
        try {
            const LogbookReader reader(path);
            return "";
        } catch (const standalone::DatabaseError& error) {
            return error.what();
        }
    }

    support::TemporaryFolder folder;
    const std::filesystem::path file = folder / "lgbTest.db";
};

TEST_F(ReadLogbook, ReadsBelowANumberNewestFirst) {
    addAndClose(1, 5);
    LogbookReader reader(file);
    EXPECT_THAT(texts(reader.before(newest, 10)), ElementsAre("5", "4", "3"));
    EXPECT_THAT(texts(reader.before(5, 1)), ElementsAre("4"));
    EXPECT_EQ(reader.count(), 3);
}

TEST_F(ReadLogbook, ReadsAboveANumberOldestFirst) {
    addAndClose(1, 5);
    LogbookReader reader(file);
    EXPECT_THAT(texts(reader.after(0, 10)), ElementsAre("3", "4", "5"));
    EXPECT_THAT(texts(reader.after(3, 1)), ElementsAre("4"));
}

TEST_F(ReadLogbook, TellsWhenTheRecordBeforeWasMade) {
    addAndClose(1, 5);
    const std::vector<StoredRecord> records = LogbookReader(file).after(0, 10);
    EXPECT_EQ(records[0].secondsBefore, std::nullopt);  // dropped
    EXPECT_EQ(records[1].secondsBefore, 180);
}

TEST_F(ReadLogbook, MarksARecordThatIsNotIntact) {
    addAndClose(1, 3);
    support::execute(file, "UPDATE record SET json = '7' WHERE number = 2");
    const std::vector<StoredRecord> records = LogbookReader(file).after(0, 10);
    EXPECT_TRUE(records[0].intact);
    EXPECT_FALSE(records[1].intact);
    EXPECT_TRUE(records[2].intact);
}

TEST_F(ReadLogbook, SeesWhatOthersAddMeanwhile) {
    const auto database = open();
    add(*database, 1, 1);
    LogbookReader reader(file);
    EXPECT_THAT(texts(reader.before(newest, 10)), ElementsAre("1"));
    add(*database, 2, 2);
    EXPECT_THAT(texts(reader.before(newest, 10)), ElementsAre("2", "1"));
}

TEST_F(ReadLogbook, LeavesALogbookInUseAsItIs) {
    const auto database = open();
    add(*database, 1, 5);
    const auto unmarked = [](Files files) {
        files["lgbTest.db-shm"].clear();  // where those of one process tell each other what they read
        return files;
    };
    const Files before = unmarked(files());
    EXPECT_THAT(texts(LogbookReader(file).before(newest, 10)), ElementsAre("5", "4", "3"));
    EXPECT_TRUE(unmarked(files()) == before);
}

TEST_F(ReadLogbook, LeavesAClosedLogbookAsItIs) {
    addAndClose(1, 5);
    const Files before = files();
    EXPECT_THAT(texts(LogbookReader(file).before(newest, 10)), ElementsAre("5", "4", "3"));
    EXPECT_TRUE(files() == before);
}

TEST_F(ReadLogbook, MakesNoFileBesideACopy) {
    addAndClose(1, 5);
    const support::TemporaryFolder elsewhere;
    const std::filesystem::path copy = elsewhere / "50%?#.db";
    std::filesystem::copy_file(file, copy);
    EXPECT_THAT(texts(LogbookReader(copy).before(newest, 10)), ElementsAre("5", "4", "3"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(elsewhere.path()), {}), 1);
}

TEST_F(ReadLogbook, ReadsACopyTakenWhileTheLogbookWasInUse) {
    const auto database = open();
    add(*database, 1, 5);
    const support::TemporaryFolder elsewhere;
    std::filesystem::copy(folder.path(), elsewhere.path());
    EXPECT_THAT(texts(LogbookReader(elsewhere / "lgbTest.db").before(newest, 10)), ElementsAre("5", "4", "3"));
}

TEST_F(ReadLogbook, RefusesACopyThatLacksWhatItsNewestRecordsNeed) {
    const auto database = open();
    add(*database, 1, 5);
    const support::TemporaryFolder elsewhere;
    std::filesystem::copy(folder.path(), elsewhere.path());
    const std::string copy = elsewhere / "lgbTest.db";
    std::filesystem::remove(copy + "-shm");
    EXPECT_EQ(refusalOf(copy),
              copy + ": its newest records are in " + copy + "-wal, which can't be read without " + copy + "-shm");
}

TEST_F(ReadLogbook, RefusesByNameWhatIsNoLogbook) {
    EXPECT_EQ(refusal(), file.string() + ": there is no such logbook");
    support::write(file, "");
    EXPECT_EQ(refusal(), file.string() + ": damaged: it is empty");
    support::write(file, "Dear diary");
    EXPECT_EQ(refusal(), file.string() + ": file is not a database");
}

TEST_F(ReadLogbook, RefusesALogbookWhoseLogCanNotBeRead) {
    addAndClose(1, 3);
    std::filesystem::remove(file.string() + "-wal");
    std::filesystem::remove(file.string() + "-shm");
    const std::string log = file.string() + "-wal";
    std::filesystem::create_directory(log);
    EXPECT_EQ(refusal(), log + ": is no regular file");
    std::filesystem::remove(log);
    ASSERT_EQ(mknod(log.c_str(), S_IFSOCK | S_IRUSR, 0), 0);
    EXPECT_EQ(refusal(), log + ": is no regular file");
}

TEST_F(ReadLogbook, RefusesATableThatIsAnother) {
    addAndClose(1, 3);
    support::execute(file, "ALTER TABLE record RENAME COLUMN seconds TO minutes");
    EXPECT_EQ(refusal(), file.string() + ": damaged: its tables are not those of a logbook");
}

TEST_F(ReadLogbook, ReadsACopyWhoseLogHoldsNothing) {
    addAndClose(1, 3);
    std::filesystem::remove(file.string() + "-shm");
    for (const std::size_t zeros : {std::size_t{0}, std::size_t{10}, std::size_t{4096}}) {
        support::write(file.string() + "-wal", std::string(zeros, '\0'));
        EXPECT_EQ(LogbookReader(file).count(), 3) << zeros;
    }
}

TEST_F(ReadLogbook, LooksAgainWhenACopyChangesMeanwhile) {
    addAndClose(1, 2);
    std::filesystem::remove(file.string() + "-wal");
    std::filesystem::remove(file.string() + "-shm");
    const std::string older = support::contentOf(file);
    const auto olderTime = std::filesystem::last_write_time(file);
    addAndClose(3, 3);
    std::filesystem::remove(file.string() + "-wal");
    std::filesystem::remove(file.string() + "-shm");
    const std::string newer = support::contentOf(file);
    bool happened = true;
    for (int which = 0; happened; ++which) {
        support::write(file, older);
        std::filesystem::last_write_time(file, olderTime);
        happened = false;
        int left = which;
        const support::Meanwhile reading(support::FileCall::Read, 1000, [&] {
            if (left-- == 0) {
                happened = true;
                support::write(file, newer);
            }
        });
        const auto count = LogbookReader(file).count();
        EXPECT_EQ(count, happened ? 3 : 2) << "changed before read " << which;
    }
}

TEST_F(ReadLogbook, MakesNoLogWhereOnlyItsIndexIsLeft) {
    addAndClose(1, 3);
    std::filesystem::remove(file.string() + "-wal");
    support::write(file.string() + "-shm", "");
    const Files before = files();
    EXPECT_EQ(LogbookReader(file).count(), 3);
    EXPECT_EQ(files(), before);
}

TEST_F(ReadLogbook, LooksAgainWhenItComesIntoUseMeanwhile) {
    addAndClose(1, 3);
    const std::filesystem::path index = file.string() + "-shm";
    std::filesystem::remove(index);
    support::write(file.string() + "-wal", std::string(2000, 'x'));
    bool isThere = false;  // the index, at every other call
    const support::Meanwhile opening(support::FileCall::Open, 2, [&] {
        isThere = !isThere;
        if (isThere) {
            support::write(index, "");
        } else {
            std::filesystem::remove(index);
        }
    });
    EXPECT_THAT(
        [&] { LogbookReader reader(file); },
        ThrowsMessage<standalone::DatabaseError>(file.string() + ": its newest records are in " + file.string() +
                                                 "-wal, which can't be read without " + index.string()));
}

TEST_F(ReadLogbook, RefusesAnIndexThatBecomesAFolderMeanwhile) {
    const auto database = open();
    add(*database, 1, 3);
    LogbookReader reader(file);
    const std::filesystem::path index = file.string() + "-shm";
    const support::Meanwhile reading(support::FileCall::Lock, 1, [&] {
        std::filesystem::remove(index);
        std::filesystem::create_directory(index);
    });
    EXPECT_THAT([&] { reader.count(); },
                ThrowsMessage<standalone::DatabaseError>(index.string() + ": is no regular file"));
}

TEST_F(ReadLogbook, NamesTheFileWhenItCanNotReadOn) {
    const auto database = open();
    add(*database, 1, 3);
    LogbookReader reader(file);
    support::execute(file, "DROP TABLE record");
    EXPECT_THAT(
        [&] { reader.before(newest, 1); },
        ThrowsMessage<standalone::DatabaseError>(file.string() + ": damaged: its tables are not those of a logbook"));
    EXPECT_THAT([&] { reader.count(); },
                ThrowsMessage<standalone::DatabaseError>(file.string() + ": no such table: record"));
}

TEST_F(ReadLogbook, RefusesANameThatNoFileCanHave) {
    const std::string longest(300, 'x');
    EXPECT_EQ(refusalOf(longest), longest + ": File name too long");
}

TEST_F(ReadLogbook, ReadsAFolderWhoseNameBeginsWithTwoSlashes) {
    addAndClose(1, 3);
    EXPECT_EQ(LogbookReader('/' + file.string()).count(), 3);
}

TEST_F(ReadLogbook, NamesWhatIsDamagedInTheStructure) {
    addAndClose(1, 3);
    EXPECT_THAT(standalone::structuralDamage(file), ElementsAre());
    support::execute(file, "PRAGMA writable_schema = 1; UPDATE sqlite_master SET rootpage = 2 WHERE name = 'lost'");
    const std::vector<std::string> damage = standalone::structuralDamage(file);
    EXPECT_THAT(damage, Contains(testing::HasSubstr("2nd reference to page 2")));
    EXPECT_THAT(damage, testing::SizeIs(testing::Gt(1U)));
    EXPECT_THAT(damage,
                testing::Not(Contains(testing::AnyOf("", testing::HasSubstr("\n"), testing::StartsWith("***")))));
}

TEST_F(ReadLogbook, ReadsWhatWasAddedAtOnce) {
    SqliteDatabaseFactory(folder.path()).addAll("lgbTest", 3, {{{}, "1"}, {{}, "2"}, {{}, "3"}, {{}, "4"}});
    EXPECT_THAT(texts(LogbookReader(file).before(newest, 10)), ElementsAre("4", "3", "2"));
}

TEST_F(ReadLogbook, IsToldHowManyOlderRecordsMadeRoom) {
    const SqliteDatabaseFactory factory(folder.path());
    EXPECT_EQ(factory.addAll("lgbTest", 3, {{{}, "1"}, {{}, "2"}}), 0);
    EXPECT_EQ(factory.addAll("lgbTest", 3, {{{}, "3"}, {{}, "4"}}), 1);
    EXPECT_EQ(factory.addAll("lgbTest", 3, {{{}, "5"}, {{}, "6"}, {{}, "7"}, {{}, "8"}}), 3);
    EXPECT_EQ(factory.addAll("lgbTest", 0, {{{}, "9"}}), 0);
}

}  // namespace
