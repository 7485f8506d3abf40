// What damage does to a logbook, and what is left of it.

#include "Hurry.h"
#include "JournalOfOthers.h"
#include "Meanwhile.h"
#include "SqliteLogbook.h"

#include <standalone/LogbookReader.h>
#include <standalone/Salvage.h>
#include <standalone/checksum.h>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include <unistd.h>

#include <algorithm>
#include <limits>

namespace {

using standalone::Failure;
using standalone::LogbookReader;
using standalone::LostRange;
using standalone::Salvage;
using testing::ElementsAre;
using testing::HasSubstr;

using Range = std::pair<std::int64_t, std::int64_t>;

std::vector<Range> rangesOf(const std::vector<LostRange>& lost) {
    std::vector<Range> ranges;
    for (const LostRange& range : lost) {
        ranges.emplace_back(range.first, range.last);
    }
    return ranges;
}

class DamagedLogbook : public SqliteLogbook {
protected:
    static constexpr std::size_t pageBytes = 1024;

    void overwritePage(std::size_t page, char byte) const {
        std::string content = support::contentOf(file);
        content.replace((page - 1) * pageBytes, pageBytes, std::string(pageBytes, byte));
        support::write(file, content);
    }

    /// What the logbook says of itself: its table and that table's index.
    void forgetHead() const {
        overwritePage(2, 0);
        overwritePage(3, 0);
    }

    /// Records with the texts "record 1 of the logbook" and so on.
    static void addTexts(lgb::IDatabase& database, int first, int last) {
        for (int number = first; number <= last; ++number) {
            add(database, text(number));
        }
    }

    static std::string text(int number) { return "record " + std::to_string(number) + " of the logbook"; }

    static Texts textsDown(int from, int to) {
        Texts texts;
        for (int number = from; number >= to; --number) {
            texts.push_back(text(number));
        }
        return texts;
    }

    void addAndBeKilled(int first, int last) const {
        doAndBeKilled([&] { addTexts(*open().release(), first, last); });
    }

    std::vector<Range> lost() const { return rangesOf(LogbookReader(file).description().lost); }

    std::string id() const { return LogbookReader(file).description().id; }

    std::string aside(int number, const std::string& end = "") const {
        return (folder / ("lgbTest.damaged-" + std::to_string(number) + ".db" + end)).string();
    }
};

TEST_F(DamagedLogbook, IsHealedWhenItIsOpenedAndTellsWhatIsLost) {
    addTexts(*open(), 1, 40);
    const std::string before = id();
    spoil(text(17));
    EXPECT_THAT(toldBy([this] { open(); }),
                HasSubstr("error libTqZelPlatform: " + file.string() +
                          ": damaged: record 17; healed with 39 records, the damaged files are kept as " + aside(1) +
                          "; lost: 17\n"));
    Texts expected = textsDown(40, 1);
    expected.erase(std::find(expected.begin(), expected.end(), text(17)));
    EXPECT_EQ(stored(), expected);
    EXPECT_THAT(lost(), ElementsAre(Range(17, 17)));
    EXPECT_EQ(id(), before);
}

/// Its healer was killed when the log was gone; a program of others then left an empty one.
TEST_F(DamagedLogbook, IsReplacedByTheHealedOneThatIsThere) {
    addTexts(*open(), 1, 40);
    const std::string whole = support::contentOf(file);
    spoil(text(17));
    support::write(folder / "lgbTest.db-healed", whole);
    support::write(log, "");
    EXPECT_EQ(toldBy([this] { open(); }), "");
    EXPECT_EQ(stored(), textsDown(40, 1));
    EXPECT_FALSE(std::filesystem::exists(aside(1)));
}

TEST_F(DamagedLogbook, GoesOnWithItsNumbers) {
    addTexts(*open(), 1, 40);
    spoil(text(40));
    add(*open(), "the next");
    const auto records = LogbookReader(file).before(INT64_MAX, 2);
    EXPECT_EQ(records[0].content.json, "the next");
    EXPECT_GT(records[0].number, 40);
    EXPECT_EQ(records[1].number, 39);
}

TEST_F(DamagedLogbook, IsHealedInUse) {
    const auto database = open();
    addTexts(*database, 1, 10);
    execute("UPDATE record SET json = 'other' WHERE number = 4");
    spoil(text(4));
    const std::string told = toldBy([&] { EXPECT_EQ(database->fetch(0, 100).size(), 9u); });
    EXPECT_THAT(told, HasSubstr("; healed with 9 records"));
    add(*database, "the next");
    EXPECT_EQ(database->count(), 10u);
    EXPECT_EQ(stored().front(), "the next");
}

TEST_F(DamagedLogbook, KeepsPagesAndCountsRightOverLostNumbers) {
    addTexts(*open(), 1, 40);
    for (const int number : {5, 6, 7, 20, 33}) {
        spoil(text(number));
    }
    const auto database = open();
    EXPECT_THAT(lost(), ElementsAre(Range(5, 7), Range(20, 20), Range(33, 33)));
    EXPECT_EQ(database->count(), 35u);
    const Texts all = textsIn(*database);
    for (unsigned int offset = 0; offset <= 36; ++offset) {
        for (unsigned int count = 0; count <= 36; ++count) {
            Texts page;
            for (const lgb::DatabaseRecord& record : database->fetch(offset, count)) {
                page.push_back(record.json);
            }
            const std::size_t first = std::min<std::size_t>(offset, all.size());
            const std::size_t behind = std::min<std::size_t>(first + count, all.size());
            EXPECT_EQ(page, Texts(all.data() + first, all.data() + behind));
        }
    }
}

TEST_F(DamagedLogbook, DropsTheOldestByCountOverLostNumbers) {
    addTexts(*open(10), 1, 20);
    spoil(text(15));
    const auto database = open(10);
    EXPECT_EQ(database->count(), 9u);
    addTexts(*database, 21, 24);
    EXPECT_EQ(database->count(), 10u);
    EXPECT_EQ(stored().back(), text(14));
    addTexts(*database, 25, 30);
    EXPECT_EQ(stored(), textsDown(30, 21));
    EXPECT_THAT(lost(), ElementsAre());
}

TEST_F(DamagedLogbook, FindsRecordsWithoutThePagesThatLeadToThem) {
    addTexts(*open(), 1, 40);
    for (std::size_t page = 1; page <= 5; ++page) {
        overwritePage(page, '\0');
    }
    factory().create("lgbTest", 0, 7);
    EXPECT_EQ(stored(), textsDown(40, 1));
    EXPECT_EQ(LogbookReader(file).description().capacity, 40u) << "nothing tells of the one before";
}

TEST_F(DamagedLogbook, FindsRecordsInPagesOfWhichSomeAreGone) {
    const std::string large(5000, 'x');
    add(*open(), large + "1");
    addTexts(*open(), 2, 3);
    add(*open(), large + "4");
    overwritePage(4, '\xff');
    EXPECT_EQ(stored(), (Texts{large + "4", text(3), text(2), large + "1"}));
}

TEST_F(DamagedLogbook, BringsNothingBackThatWasClearedOrDropped) {
    {
        const auto database = open(5);
        addTexts(*database, 1, 8);
        database->clear();
        addTexts(*database, 9, 20);
    }
    overwritePage(2, '\xff');
    EXPECT_EQ(stored(), textsDown(20, 16));
}

TEST_F(DamagedLogbook, StaysEmptyWhenItWasCleared) {
    addTexts(*open(), 1, 8);
    open()->clear();
    overwritePage(2, '\xff');
    EXPECT_EQ(stored(), Texts{});
    add(*open(), "the next");
    EXPECT_EQ(LogbookReader(file).after(0, 1)[0].number, 9);
}

TEST_F(DamagedLogbook, TakesNoTextForARecord) {
    addTexts(*open(), 1, 3);
    const std::string content = support::contentOf(file);
    add(*open(), content);  // a logbook within a record
    addTexts(*open(), 5, 6);
    overwritePage(1, '\0');
    EXPECT_EQ(stored(), (Texts{text(6), text(5), content, text(3), text(2), text(1)}));
}

TEST_F(DamagedLogbook, TakesNoRecordOfAnotherLogbook) {
    addTexts(*open(), 1, 20);
    const std::string other = support::contentOf(file);
    std::filesystem::remove_all(folder.path());
    addNumbers(*open(), 1, 20);
    std::string content = support::contentOf(file);
    constexpr std::size_t pageOfRecords = 5;
    content.replace(pageOfRecords * pageBytes, pageBytes, other, pageOfRecords * pageBytes, pageBytes);
    support::write(file, content);
    const Texts all = countingDown(20, 1);
    for (const std::string& record : stored()) {
        EXPECT_NE(std::find(all.begin(), all.end(), record), all.end()) << record;
    }
}

TEST_F(DamagedLogbook, OfNoBytesIsMadeAnew) {
    support::write(file, "");
    addNumbers(*open(3), 1, 5);
    EXPECT_EQ(stored(), countingDown(5, 3));
}

TEST_F(DamagedLogbook, CutShortKeepsWhatIsLeft) {
    addTexts(*open(), 1, 40);
    std::filesystem::resize_file(file, 6 * pageBytes);
    const Texts left = stored();
    const Texts all = textsDown(40, 1);
    EXPECT_GT(left.size(), 0u);
    EXPECT_TRUE(std::search(all.begin(), all.end(), left.begin(), left.end()) != all.end());
    add(*open(), "the next");
    EXPECT_EQ(stored().front(), "the next");
}

TEST_F(DamagedLogbook, CutShortInItsHeaderKeepsWhatIsInTheLog) {
    doAndBeKilled([this] {
        auto& database = *open().release();
        addTexts(database, 1, 40);
        database.clear();  // which changes the first page, so that the log has it
        addTexts(database, 41, 42);
    });
    std::filesystem::resize_file(file, 81);
    EXPECT_EQ(stored(), textsDown(42, 41));
    add(*open(), "the next");
    EXPECT_EQ(stored().front(), "the next");
}

TEST_F(DamagedLogbook, BringsBackRecordsBehindABreakInTheLog) {
    addAndBeKilled(1, 12);
    spoil(text(5));
    const std::string told = toldBy([this] { open(); });
    const Texts left = stored();
    EXPECT_EQ(left.front(), text(12));
    EXPECT_GE(left.size(), 11u);
    EXPECT_THAT(told, HasSubstr(file.string() + ": damaged: its log is damaged, and tells of more behind that; "
                                                "healed with 11 records"));
}

/// A log whose last page holds 3, of which all copies are damaged, and 4.
class LogWithoutTheLastButOne : public DamagedLogbook {
protected:
    LogWithoutTheLastButOne() {
        doAndBeKilled([this] {
            auto& database = *open().release();
            for (int number = 1; number <= 4; ++number) {
                add(database, twoOnAPage(number));
            }
        });
        spoil(text(3));
    }

    static std::string twoOnAPage(int number) { return text(number) + std::string(400, 'x'); }

    void expectTheLastToBeBack() const {
        EXPECT_THAT(toldBy([this] { open(); }), HasSubstr("; lost: 3"));
        EXPECT_EQ(stored(), (Texts{twoOnAPage(4), twoOnAPage(2), twoOnAPage(1)}));
    }
};

TEST_F(LogWithoutTheLastButOne, BringsTheLastBackWhenItIsCutShort) {
    std::filesystem::resize_file(log, std::filesystem::file_size(log) - 10);
    expectTheLastToBeBack();
}

TEST_F(LogWithoutTheLastButOne, BringsTheLastBackWhenNothingTellsOfTheOther) {
    constexpr std::size_t frameBytes = 24 + pageBytes;
    std::string content = support::contentOf(log);
    content.replace(content.size() - 2 * frameBytes, frameBytes, frameBytes, '\0');
    support::write(log, content);
    expectTheLastToBeBack();
}

/// A log with the sums of a machine whose numbers begin with their highest byte.
class LogOfAnotherMachine : public DamagedLogbook {
protected:
    void turnSums() const {
        std::string bytes = support::contentOf(log);
        bytes[3] = static_cast<char>(bytes[3] | 1);
        support::LogSum sum;
        bytes.replace(24, 8, sum.over(bytes.substr(0, 24)));
        for (std::size_t frame = 32; frame < bytes.size(); frame += 24 + pageBytes) {
            sum.over(bytes.substr(frame, 8));
            bytes.replace(frame + 16, 8, sum.over(bytes.substr(frame + 24, pageBytes)));
        }
        support::write(log, bytes);
    }
};

TEST_F(LogOfAnotherMachine, IsWhole) {
    addAndBeKilled(1, 5);
    turnSums();
    EXPECT_EQ(toldBy([this] { open(); }), "");
    EXPECT_EQ(stored(), textsDown(5, 1));
}

TEST_F(DamagedLogbook, SetsALogOfAnotherLogbookAside) {
    addAndBeKilled(1, 12);
    const std::string foreign = support::contentOf(log);
    std::filesystem::remove_all(folder.path());
    addNumbers(*open(), 1, 5);
    support::write(log, foreign);
    EXPECT_THAT(toldBy([this] { open(); }),
                HasSubstr(log.string() + ": is the log of another logbook, and kept as " + aside(1, "-wal") + "\n"));
    EXPECT_EQ(stored(), countingDown(5, 1));
    EXPECT_EQ(support::contentOf(aside(1, "-wal")), foreign);
}

TEST_F(DamagedLogbook, KeepsTheNewestTwoSetsOfDamagedFiles) {
    addTexts(*open(), 1, 9);
    for (const int number : {2, 4, 6}) {
        spoil(text(number));
        open();
    }
    EXPECT_THAT(standalone::filesSetAside(file), ElementsAre(aside(2), aside(3)));
    EXPECT_EQ(Salvage(aside(2)).numbers().size(), 7u);
}

TEST_F(DamagedLogbook, LeavesTheOtherLogbookAlone) {
    addTexts(*open(), 1, 9);
    factory().create("lgbOther", 0, 0)->add("other", {});
    const std::string other = support::contentOf(folder / "lgbOther.db");
    spoil(text(4));
    open();
    EXPECT_EQ(support::contentOf(folder / "lgbOther.db"), other);
}

TEST_F(DamagedLogbook, IsNotHealedWhileAnotherWritesToIt) {
    addTexts(*open(), 1, 3);
    execute("INSERT INTO lost VALUES (8, 7, 0)");
    {
        SQLite::Database other(file.string(), SQLite::OPEN_READWRITE);
        other.exec("BEGIN IMMEDIATE");
        const support::Hurry hurry;
        EXPECT_EQ(refusal(), (Refusal{Failure::Busy, file.string() + ": in use by another process"}));
    }
    EXPECT_EQ(stored(), textsDown(3, 1));
}

TEST_F(DamagedLogbook, IsLeftAloneWhenItTurnsOutToBeNewer) {
    addTexts(*open(), 1, 3);
    execute("INSERT INTO lost VALUES (8, 7, 0)");
    const std::string before = support::contentOf(file);
    const support::Meanwhile copying(support::FileCall::Sync, 100, [this] {
        std::string copy = support::contentOf(aside(1));
        if (const std::size_t column = copy.find("nanoseconds"); column != std::string::npos) {
            copy[63] = 99;  // of the version
            copy.replace(column, 4, "pico");
            support::write(aside(1), copy);
        }
    });
    const auto refused = refusal();
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->first, Failure::Newer);
    EXPECT_THAT(refused->second, HasSubstr(aside(1) + ": written by schema 99, this program reads "));
    EXPECT_EQ(support::contentOf(file), before);
    EXPECT_FALSE(std::filesystem::exists(aside(1)));
}

TEST_F(DamagedLogbook, IsNotHealedByReading) {
    addTexts(*open(), 1, 9);
    spoil(text(4));
    const auto before = support::filesOf(folder.path());
    EXPECT_EQ(LogbookReader(file).count(), 9);
    EXPECT_EQ(Salvage(file).numbers().size(), 8u);
    EXPECT_TRUE(support::filesOf(folder.path()) == before);
}

TEST_F(DamagedLogbook, MakesNoMoreOfARecordThanOneCanBe) {
    addTexts(*open(), 1, 3);
    execute("UPDATE record SET json = printf('%.*c', 3000000, 'x') WHERE number = 2");
    EXPECT_EQ(refusalOf([this] { LogbookReader(file).before(INT64_MAX, 10); }),
              (Refusal{Failure::Damaged, file.string() + ": string or blob too big"}));
    EXPECT_THAT(Salvage(file).numbers(), ElementsAre(1, 3));
    open();
    EXPECT_EQ(stored(), (Texts{text(3), text(1)}));
}

TEST_F(DamagedLogbook, IsHealedBesideFoldersWithTheNamesOfOlderSets) {
    addTexts(*open(), 1, 9);
    for (const int set : {1, 2, 3}) {
        std::filesystem::create_directories(aside(set) + "/x");
    }
    spoil(text(4));
    open();
    EXPECT_EQ(stored().size(), 8u);
    EXPECT_EQ(Salvage(aside(4)).numbers().size(), 8u);
}

TEST_F(DamagedLogbook, HasItsRecordsSalvagedWithTheirNumbers) {
    addTexts(*open(10), 1, 30);
    spoil(text(25));
    std::vector<std::int64_t> looked;
    std::int64_t all = 0;
    const Salvage salvage(file, [&](std::int64_t done, std::int64_t total) {
        looked.push_back(done);
        all = total;
    });
    EXPECT_THAT(salvage.numbers(), ElementsAre(21, 22, 23, 24, 26, 27, 28, 29, 30));
    EXPECT_THAT(rangesOf(salvage.missing()), ElementsAre(Range(25, 25)));
    EXPECT_EQ(salvage.record(26).value().json, text(26));
    EXPECT_FALSE(salvage.removed().empty());
    EXPECT_LT(salvage.removed().back(), 21);
    EXPECT_TRUE(std::is_sorted(looked.begin(), looked.end()));
    EXPECT_EQ(looked.back(), all);
}

TEST_F(DamagedLogbook, IsLookedAtAgainBeforeARecordOfItIsSalvaged) {
    addTexts(*open(), 1, 30);
    const Salvage salvage(file);
    spoil(text(25));
    EXPECT_FALSE(salvage.record(25));
    EXPECT_TRUE(salvage.record(24));
}

TEST_F(DamagedLogbook, IsRefusedForSalvageWhenNothingOfItIsALogbook) {
    support::write(file, std::string(5000, 'x'));
    EXPECT_EQ(refusalOf([this] { const Salvage salvage(file); }),
              (Refusal{Failure::Foreign, file.string() + ": nothing in it is of a logbook"}));
    EXPECT_EQ(refusalOf([this] { const Salvage salvage(folder / "none.db"); }),
              (Refusal{Failure::Missing, (folder / "none.db").string() + ": there is no such file"}));
}

/// The two bytes of a page, from 1, where it says where something is.
class MisleadingPage : public DamagedLogbook {
protected:
    void write(std::size_t page, std::size_t at, unsigned int place) const {
        std::string content = support::contentOf(file);
        content[(page - 1) * pageBytes + at] = static_cast<char>(place >> 8);
        content[(page - 1) * pageBytes + at + 1] = static_cast<char>(place);
        support::write(file, content);
    }

    static constexpr std::size_t records = 4;
    static constexpr std::size_t lostNumbers = 5;
    static constexpr std::size_t firstCellAt = 8;
    static constexpr std::size_t firstCellOfBranchAt = 12;
};

TEST_F(MisleadingPage, AtTheRootOfFewRecordsTakesNone) {
    addTexts(*open(), 1, 3);
    for (const unsigned int place : {0U, 1023U, 65535U}) {
        write(records, firstCellAt, place);
        open();
        EXPECT_EQ(stored(), textsDown(3, 1)) << place;
    }
}

TEST_F(MisleadingPage, AtTheEndOfFewRecordsTakesNone) {
    addTexts(*open(), 1, 3);
    for (const unsigned int place : {0U, 1023U, 65535U}) {
        write(records, firstCellAt + 4, place);
        open();
        EXPECT_EQ(stored(), textsDown(3, 1)) << place;
    }
}

TEST_F(MisleadingPage, AtTheRootOfManyRecordsTakesNone) {
    addTexts(*open(200), 1, 200);
    for (const unsigned int place : {0U, 1023U, 65535U}) {
        write(records, firstCellOfBranchAt, place);
        open(200);
        EXPECT_EQ(stored(), textsDown(200, 1)) << place;
    }
}

TEST_F(MisleadingPage, OfLostNumbersTakesNoRecord) {
    addTexts(*open(30), 1, 40);
    spoil("record 20 of");
    open(30);
    for (const unsigned int place : {0U, 1023U, 65535U}) {
        write(lostNumbers, firstCellAt, place);
        open(30);
        EXPECT_EQ(stored().size(), 29U) << place;
    }
    write(lostNumbers, 3, 65535);
    open(30);
    EXPECT_EQ(stored().size(), 29U);
}

/// As many as it had without the one that was lost, and rather one that had been dropped too many.
TEST_F(MisleadingPage, AtTheRootAndOfLostNumbersTakesNoRecord) {
    for (const unsigned int place : {0U, 1023U, 65535U}) {
        removeFiles();
        addTexts(*open(30), 1, 40);
        spoil("record 20 of");
        open(30);
        write(lostNumbers, firstCellAt, place);
        write(records, firstCellOfBranchAt, 0);
        open(30);
        const Texts found = stored();
        const Texts all = textsDown(40, 21);
        EXPECT_TRUE(std::equal(all.begin(), all.end(), found.begin())) << place;
        EXPECT_THAT(found.size(), testing::AnyOf(29U, 30U)) << place;
    }
}

TEST_F(MisleadingPage, AtTheRootOfAFullLogbookLetsItCountOverLostNumbers) {
    constexpr std::uint32_t capacity = 30;
    addTexts(*open(capacity), 1, 40);
    spoil("record 20 of");
    addTexts(*open(capacity), 41, 43);
    Texts expected = textsDown(43, 21);
    const Texts beyond = textsDown(19, 13);
    expected.insert(expected.end(), beyond.begin(), beyond.end());
    ASSERT_EQ(stored(), expected);
    write(records, firstCellOfBranchAt, 0);
    open(capacity);
    EXPECT_EQ(stored(), expected);
}

TEST_F(MisleadingPage, AtTheRootTakesNoneWhateverIsSaidOfLostNumbers) {
    for (const char* const lost : {"(-5, -1, 0)", "(3, 2, 0)", "(2, 3, 0)", "(900, 950, 0)", "(7, 9, 0), (8, 10, 0)"}) {
        for (const bool isRootMisleading : {false, true}) {
            removeFiles();
            addTexts(*open(5), 1, 5);
            execute(std::string("INSERT INTO lost VALUES ") + lost);
            if (isRootMisleading) {
                write(records, firstCellAt, 0);
            }
            open(5);
            EXPECT_EQ(stored(), textsDown(5, 1)) << lost;
        }
    }
}

TEST_F(DamagedLogbook, HoldsNoNumberThatWasCleared) {
    const auto database = open();
    addTexts(*database, 1, 2);
    database->clear();
    addTexts(*database, 3, 5);
    execute("UPDATE record SET number = number - 1");
    EXPECT_THAT(toldBy([this] { open(); }),
                HasSubstr(": damaged: record 2 is there, but all up to 2 were cleared; healed with "));
}

TEST_F(DamagedLogbook, SaysNothingElseInItsHeader) {
    addTexts(*open(), 1, 3);
    std::string content = support::contentOf(file);
    content[47] = 1;  // tables would be of an older format
    support::write(file, content);
    EXPECT_THAT(toldBy([this] { open(); }),
                HasSubstr(": damaged: its header is not that of a logbook; healed with 3 "));
    EXPECT_EQ(stored(), textsDown(3, 1));
}

TEST_F(DamagedLogbook, IsNoneWhenAKillCutTheChangeToALogShort) {
    addTexts(*open(), 1, 3);
    std::string content = support::contentOf(file);
    content[18] = '\2';
    content[19] = '\1';
    support::write(file, content);
    std::filesystem::remove(log);
    open();
    EXPECT_FALSE(std::filesystem::exists(aside(1)));
    EXPECT_EQ(stored(), textsDown(3, 1));
}

TEST_F(DamagedLogbook, HoldsTextsInUtf8Only) {
    addTexts(*open(), 1, 3);
    {
        SQLite::Database made(file.string());
        SQLite::Database other((folder / "other.db").string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        other.exec("PRAGMA encoding = 'UTF-16'");
        for (const char* const pragma : {"application_id", "user_version", "page_size"}) {
            const std::string set = std::string("PRAGMA ") + pragma;
            other.exec(set + " = " + made.execAndGet(set).getString());
        }
        SQLite::Statement tables(made, "SELECT sql FROM sqlite_master WHERE sql IS NOT NULL");
        while (tables.executeStep()) {
            other.exec(tables.getColumn(0).getString());
        }
    }
    EXPECT_EQ(refusalOf([this] { LogbookReader reader(folder / "other.db"); }),
              (Refusal{Failure::Damaged,
                       (folder / "other.db").string() + ": damaged: its tables are not those of a logbook"}));
}

TEST_F(DamagedLogbook, KeepsWhatWasKnownToBeLostWhenItIsDamagedAgain) {
    constexpr std::uint32_t capacity = 30;
    addTexts(*open(capacity), 1, 40);
    spoil("record 20 of");
    addTexts(*open(capacity), 41, 42);
    ASSERT_THAT(lost(), ElementsAre(Range{20, 20}));
    const std::int64_t found = LogbookReader(file).description().lost[0].found;
    spoil("record 30 of");
    open(capacity);
    EXPECT_THAT(lost(), ElementsAre(Range{20, 20}, Range{30, 30}));
    EXPECT_EQ(LogbookReader(file).description().lost[0].found, found);
    overwritePage(2, 0);
    open(capacity);
    EXPECT_THAT(lost(), ElementsAre(Range{20, 20}, Range{30, 30}));
    EXPECT_EQ(stored().size(), capacity - 1);  // 42 to 12, but for these
}

/// What may change in a record without changing the structure of the file.
struct Change {
    std::string name;
    std::string assignment;
};

class ChangedRecord : public DamagedLogbook, public testing::WithParamInterface<Change> {};

TEST_P(ChangedRecord, IsNotTakenForTheOneThatWasStored) {
    addTexts(*open(), 1, 3);
    execute("UPDATE record SET " + GetParam().assignment + " WHERE number = 2");
    const Texts found = stored();
    EXPECT_TRUE(found == textsDown(3, 1) || found == (Texts{text(3), text(1)})) << testing::PrintToString(found);
    add(*open(), "4");
    EXPECT_EQ(stored().front(), "4");
}

INSTANTIATE_TEST_SUITE_P(SqliteDatabase, ChangedRecord,
                         testing::Values(Change{"InItsSeconds", "seconds = 1"},
                                         Change{"InItsNanoseconds", "nanoseconds = 1"},
                                         Change{"InItsTime", "time = 'x'"}, Change{"InItsText", "json = '3'"},
                                         Change{"InItsNumberBelowAll", "number = -1"},
                                         Change{"InItsNumberBeyondAll", "number = 1 << 62"},
                                         Change{"InABitMovedBetweenTexts", "time = json, json = ''"},
                                         Change{"InItsChecksum", "checksum = checksum + 1"}),
                         [](const auto& change) { return change.param.name; });

TEST_F(DamagedLogbook, TellsEqualRecordsApartByTheirNumber) {
    const auto database = open();
    add(*database, "same");
    add(*database, "same");
    execute("UPDATE record SET checksum = (SELECT checksum FROM record WHERE number = 1) WHERE number = 2");
    LogbookReader reader(file);
    EXPECT_FALSE(reader.before(INT64_MAX, 1)[0].intact);
}

TEST_F(DamagedLogbook, ThatIsFullKeepsItsRecordsWhenItTellsOfFewerLostNumbers) {
    addTexts(*open(5), 1, 2);
    execute("INSERT INTO lost VALUES (3, 8, 0)");
    addTexts(*open(5), 9, 11);
    execute("UPDATE lost SET last = 3");
    open(5);
    EXPECT_EQ(stored(), (Texts{text(11), text(10), text(9), text(2), text(1)}));
}

TEST_F(DamagedLogbook, IsReadByTheUsualSizeOfPagesWhenItTellsNone) {
    addTexts(*open(), 1, 5);
    std::string content = support::contentOf(file);
    content[16] = 0;
    content[17] = 1;  // 65536
    support::write(file, content);
    open();
    EXPECT_EQ(stored(), textsDown(5, 1));
}

TEST_F(DamagedLogbook, IsHealedWhenItsLogTellsOfPagesThatCanNotBe) {
    for (const char* const bytes : {"\0\0\1\0", "\0\2\0\0", "\0\0\4\1"}) {
        std::filesystem::remove(file);
        addAndBeKilled(1, 5);
        std::string content = support::contentOf(log);
        content.replace(8, 4, bytes, 4);
        support::write(log, content);
        open();
        EXPECT_EQ(stored(), textsDown(5, 1));
    }
}

TEST_F(DamagedLogbook, IsSetAsideBesideFilesOfOthersWithSuchNames) {
    addTexts(*open(), 1, 3);
    const std::string last = std::to_string(std::numeric_limits<unsigned long>::max());
    const std::vector<std::filesystem::path> others = {
        folder / "lgbTest.damaged-x.db", folder / "lgbTest.damaged-99999999999999999999999.db",
        folder / ("lgbTest.damaged-" + last + ".db"), folder / "lgbTest.damaged-7.txt"};
    for (const auto& other : others) {
        support::write(other, "other");
    }
    spoil("record 2 of");
    open();
    for (const auto& other : others) {
        EXPECT_EQ(support::contentOf(other), "other");
    }
    EXPECT_TRUE(std::filesystem::exists(aside(1)));
}

TEST_F(DamagedLogbook, CarriesOutNoJournalForWhatIsSetAside) {
    addTexts(*open(), 1, 3);
    const std::filesystem::path precious = folder / "precious";
    support::write(precious, "precious");
    const support::JournalOfOthers race(".damaged-1.db", precious);
    spoil("record 2 of");
    open();
    EXPECT_TRUE(std::filesystem::exists(aside(1, "-journal")));
    EXPECT_EQ(support::contentOf(precious), "precious");
}

TEST_F(DamagedLogbook, BringsBackWhatIsInALogWithoutItsBeginning) {
    for (const auto& [bytes, byte] : {std::pair<std::size_t, char>{512, '\0'}, {60, '\xff'}, {4096, '\0'}}) {
        addAndBeKilled(1, 30);
        std::string content = support::contentOf(log);
        support::write(log, content.replace(0, bytes, bytes, byte));
        EXPECT_THAT(toldBy([this] { open(); }), HasSubstr("; healed with 30 records")) << bytes;
        EXPECT_EQ(stored(), textsDown(30, 1)) << bytes;
        removeFiles();
    }
}

/// Whatever SQLite makes of them: of some of these it says that there is no memory for them.
TEST_F(DamagedLogbook, IsHealedWhereverItsTablesAreDamaged) {
    addTexts(*open(), 1, 3);
    const std::string before = support::contentOf(file);
    for (std::size_t at = 400; at < pageBytes - 40; at += 7) {
        std::string content = before;
        removeFiles();
        support::write(file, content.replace(at, 40, 40, '\xff'));
        addTexts(*open(), 4, 4);
        EXPECT_EQ(stored(), textsDown(4, 1)) << at;
    }
}

TEST_F(DamagedLogbook, IsHealedWhenItsLogClaimsPagesWithoutEnd) {
    addTexts(*open(), 1, 3);
    std::filesystem::remove(file.string() + "-shm");
    support::write(log, support::logClaiming(0xfffffffe, support::contentOf(file).substr(0, pageBytes)));
    EXPECT_THAT(toldBy([this] { open(); }), HasSubstr("damaged: it can't have so many pages; healed with 3 records"));
    EXPECT_EQ(stored(), textsDown(3, 1));
}

TEST_F(DamagedLogbook, IsHealedWhenItIsAnOlderCopyBesideItsLog) {
    addTexts(*open(), 1, 40);
    const std::string older = support::contentOf(file);
    addTexts(*open(), 41, 141);
    addAndBeKilled(142, 142);
    support::write(file, older);
    EXPECT_THAT(toldBy([this] { open(); }), HasSubstr("; healed with"));
    EXPECT_EQ(stored().front(), text(142));
}

TEST_F(DamagedLogbook, KeepsItsRecordsWhenNothingTellsItsId) {
    addTexts(*open(), 1, 2);
    forgetHead();
    std::filesystem::remove(log);
    EXPECT_THAT(toldBy([this] { open(); }), HasSubstr("; healed with 2 records"));
    EXPECT_EQ(stored(), textsDown(2, 1));
}

/// Which may have changed, and nothing is left to tell.
TEST_F(DamagedLogbook, BelievesNoSingleRecordWhenNothingTellsItsId) {
    addTexts(*open(), 1, 1);
    forgetHead();
    std::filesystem::remove(log);
    EXPECT_THAT(toldBy([this] { open(); }), HasSubstr("; healed with 0 records"));
    EXPECT_EQ(stored(), Texts());
}

TEST_F(DamagedLogbook, TakesNoIdFromTheLogOfAnother) {
    addTexts(*open(), 1, 3);
    const std::string ofAnother = support::contentOf(log);
    removeFiles();
    addTexts(*open(), 1, 3);
    forgetHead();
    support::write(log, ofAnother);
    EXPECT_THAT(toldBy([this] { open(); }), HasSubstr("; healed with 3 records"));
    EXPECT_EQ(stored(), textsDown(3, 1));
}

TEST_F(DamagedLogbook, KeepsAllRecordsWhenNobodyKnowsHowManyToKeep) {
    addTexts(*open(), 1, 5);
    forgetHead();
    std::filesystem::remove(log);
    std::filesystem::remove(index);
    factory().create("lgbTest", 0, 2);
    EXPECT_EQ(stored(), textsDown(5, 1));
    EXPECT_EQ(LogbookReader(file).description().capacity, 5U);
}

TEST_F(DamagedLogbook, BelievesNoHeadThatCanNotBe) {
    constexpr std::int64_t beyondAll = std::int64_t{1} << 62;
    for (const auto& [capacity, cleared] :
         {Range{-1, 0}, Range{std::int64_t{UINT32_MAX} + 1, 0}, Range{5, -1}, Range{5, beyondAll}}) {
        std::filesystem::remove(file);
        addTexts(*open(), 1, 3);
        standalone::LogbookId bytes{};
        const std::string digits = id();
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes.at(i) = static_cast<unsigned char>(std::stoul(digits.substr(2 * i, 2), nullptr, 16));
        }
        execute("UPDATE logbook SET capacity = " + std::to_string(capacity) + ", cleared = " + std::to_string(cleared) +
                ", checksum = " + std::to_string(standalone::checksum(bytes, capacity, cleared)));
        EXPECT_THAT(toldBy([this] { open(); }), HasSubstr(": damaged: what it says of itself is not what was stored"));
        add(*open(), "the next");
        EXPECT_EQ(stored().front(), "the next");
    }
}

/// A contradiction within a file that SQLite finds sound.
struct Contradiction {
    std::string name;
    std::string sql;
};

class ContradictoryFile : public DamagedLogbook, public testing::WithParamInterface<Contradiction> {};

TEST_P(ContradictoryFile, IsHealedWithTheSameRecords) {
    addTexts(*open(), 1, 5);
    execute(GetParam().sql);
    EXPECT_THAT(toldBy([this] { open(); }), HasSubstr("; healed with "));
    const Texts all = textsDown(5, 1);
    for (const std::string& record : stored()) {
        EXPECT_NE(std::find(all.begin(), all.end(), record), all.end()) << record;
    }
    add(*open(), "the next");
    EXPECT_EQ(stored().front(), "the next");
    EXPECT_EQ(toldBy([this] { open(); }), "");
}

INSTANTIATE_TEST_SUITE_P(
    SqliteDatabase, ContradictoryFile,
    testing::Values(
        Contradiction{"ThatLacksARecord", "DELETE FROM record WHERE number = 3"},
        Contradiction{"WithARecordThatWasCleared", "UPDATE logbook SET cleared = 1"},
        Contradiction{"WithoutAHead", "DELETE FROM logbook"},
        Contradiction{"WithTwoHeads", "INSERT INTO logbook SELECT id, 7, cleared, checksum FROM logbook"},
        Contradiction{"WithAShortId", "UPDATE logbook SET id = x'00'"},
        Contradiction{"WithANumberBelowOne", "UPDATE record SET number = -1 WHERE number = 1"},
        Contradiction{"WithTheHighestNumber", "UPDATE record SET number = 9223372036854775807 WHERE number = 5"},
        Contradiction{"WithLostNumbersThatAreThere", "INSERT INTO lost VALUES (2, 3, 0)"},
        Contradiction{"WithLostNumbersOutOfOrder", "INSERT INTO lost VALUES (8, 7, 0)"},
        Contradiction{"WithLostNumbersThatOverlap", "INSERT INTO lost VALUES (7, 9, 0), (8, 10, 0)"},
        Contradiction{"WithLostNumbersBeyondAll", "INSERT INTO lost VALUES (7, 4611686018427387905, 0)"},
        Contradiction{"WithManyHeads",
                      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 200000) "
                      "INSERT INTO logbook SELECT id, i, cleared, checksum FROM n, (SELECT * FROM logbook)"},
        Contradiction{"WithTooManyLostNumbers",
                      "WITH RECURSIVE n(i) AS (SELECT 7 UNION ALL SELECT i + 2 FROM n LIMIT 200000) "
                      "INSERT INTO lost SELECT i, i, 0 FROM n"},
        Contradiction{"WithAnEmptyStatement",
                      "PRAGMA writable_schema = 1; UPDATE sqlite_master SET sql = '' WHERE sql IS NULL"},
        Contradiction{"WithFewerTables", "DROP TABLE lost"},
        Contradiction{"WithoutTables", "DROP TABLE lost; DROP TABLE record; DROP TABLE logbook"},
        Contradiction{"WithAnotherVersion", "PRAGMA user_version = 7"},
        Contradiction{"WithAnotherApplication", "PRAGMA application_id = 7"},
        Contradiction{"WithATableTooMany", "CREATE TABLE more (id INTEGER)"},
        Contradiction{"WithATrigger",
                      "CREATE TRIGGER evil BEFORE INSERT ON record BEGIN DELETE FROM "
                      "record; END"},
        Contradiction{"WithOtherColumns", "ALTER TABLE record RENAME COLUMN seconds TO minutes"}),
    [](const auto& contradiction) { return contradiction.param.name; });

}  // namespace
