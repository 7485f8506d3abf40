// What happens to the files of a logbook while it is in use, by the hands of others.

#include "Hurry.h"
#include "Meanwhile.h"
#include "SqliteLogbook.h"
#include "child.h"

#include <standalone/LogbookReader.h>

#include <sqlite3.h>

#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>

namespace {

using standalone::Failure;
using standalone::LogbookReader;
using support::FileCall;
using support::Meanwhile;
using testing::EndsWith;
using testing::HasSubstr;

/// Numbers 1 to 10 are in it, 11 and on are added after something happened to its files.
class LogbookInUse : public SqliteLogbook {
protected:
    LogbookInUse() { addNumbers(*database, 1, 10); }

    std::string line(const std::string& what) const { return "error libTqZelPlatform: " + file.string() + what; }

    const std::string deleted = ": was deleted or replaced while in use; recording goes on in what is there now\n";

    const std::unique_ptr<lgb::IDatabase> database = open(100);
};

TEST_F(LogbookInUse, IsMadeAnewWhenItsFolderIsDeleted) {
    std::filesystem::remove_all(folder.path());
    EXPECT_THAT(toldBy([this] { addNumbers(*database, 11, 12); }), EndsWith(line(deleted)));
    EXPECT_EQ(stored(), countingDown(12, 11));
}

TEST_F(LogbookInUse, IsMadeAnewWhenItsFilesAreDeleted) {
    removeFiles();
    EXPECT_THAT(toldBy([this] { addNumbers(*database, 11, 12); }), EndsWith(line(deleted)));
    EXPECT_EQ(textsIn(*database), countingDown(12, 11));
    EXPECT_EQ(stored(), countingDown(12, 11));
}

TEST_F(LogbookInUse, IsMadeAnewForAPageToo) {
    removeFiles();
    EXPECT_EQ(database->count(), 0u);
    EXPECT_EQ(textsIn(*database), Texts{});
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(LogbookInUse, GoesOnInWhatAnotherPutInItsPlace) {
    const support::TemporaryFolder elsewhere;
    const standalone::SqliteDatabaseFactory other(elsewhere.path());
    add(*other.create("lgbTest", 0, 0), "of another");
    std::filesystem::rename(elsewhere / "lgbTest.db", file);
    EXPECT_THAT(toldBy([this] { add(*database, "11"); }), HasSubstr(line(deleted)));
    EXPECT_EQ(stored(), (Texts{"11", "of another"}));
}

TEST_F(LogbookInUse, ClearsNothingThatAnotherPutInItsPlace) {
    const support::TemporaryFolder elsewhere;
    const standalone::SqliteDatabaseFactory other(elsewhere.path());
    add(*other.create("lgbTest", 0, 0), "of another");
    removeFiles();
    std::filesystem::rename(elsewhere / "lgbTest.db", file);
    database->clear();
    EXPECT_EQ(textsIn(*database), Texts{"of another"});
}

TEST_F(LogbookInUse, KeepsItsRecordsWhenItsLogIsDeleted) {
    std::filesystem::remove(log);
    std::filesystem::remove(index);
    EXPECT_THAT(toldBy([this] { add(*database, "11"); }),
                HasSubstr(line(": its log was deleted or replaced while in use; recording goes on in what is there "
                               "now\n")));
    EXPECT_EQ(stored(), countingDown(11, 1));
}

TEST_F(LogbookInUse, KeepsItsRecordsWhenItsIndexIsDeleted) {
    std::filesystem::remove(index);
    add(*database, "11");
    EXPECT_EQ(stored(), countingDown(11, 1));
}

TEST_F(LogbookInUse, KeepsItsRecordsWhenItsFolderIsMoved) {
    const std::string moved = folder.path().string() + "-moved";
    std::filesystem::rename(folder.path(), moved);
    add(*database, "11");
    EXPECT_EQ(stored(), Texts{"11"});
    EXPECT_EQ(LogbookReader(moved + "/lgbTest.db").count(), 10);
    std::filesystem::remove_all(moved);
}

TEST_F(LogbookInUse, KeepsWhatItHasBeyondAnOlderCopyThatIsPutBack) {
    const support::TemporaryFolder backup;
    std::filesystem::copy_file(file, backup / "lgbTest.db");
    addNumbers(*database, 11, 20);
    removeFiles();
    std::filesystem::copy_file(backup / "lgbTest.db", file);
    add(*database, "21");
    EXPECT_EQ(stored(), countingDown(21, 1));
}

TEST_F(LogbookInUse, IsOfMemoryWhenItHasNoneToKeepItsRecordsAndKeepsThem) {
    const std::string older = support::contentOf(file);
    addNumbers(*database, 11, 12);
    removeFiles();
    support::write(file, older);
    sqlite3_hard_heap_limit64(1);
    const auto refused = refusalOf([this] { add(*database, "13"); });
    sqlite3_hard_heap_limit64(0);
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->first, Failure::Memory);
    add(*database, "13");
    EXPECT_EQ(stored(), countingDown(13, 1));
}

TEST_F(LogbookInUse, IsRefusedWhileItsProcessStillUsesWhatIsGone) {
    auto other = open(100);
    std::filesystem::remove(index);
    EXPECT_EQ(refusalOf([&] { add(*database, "11"); }),
              (Refusal{Failure::Busy, index.string() + ": was removed, and is still in use by this process"}));
    other.reset();
    add(*database, "11");
    EXPECT_EQ(stored(), countingDown(11, 1));
}

TEST_F(LogbookInUse, PutsNoDamagedRecordBack) {
    execute("UPDATE record SET json = 'x' WHERE number = 10");
    std::filesystem::remove(log);
    std::filesystem::remove(index);
    add(*database, "11");
    EXPECT_EQ(stored().front(), "11");
    const Texts all = stored();
    EXPECT_EQ(std::count(all.begin(), all.end(), "x"), 0);
}

TEST_F(LogbookInUse, KeepsBothWhatItHasAndWhatACopyGotByItself) {
    const support::TemporaryFolder other;
    std::filesystem::copy_file(file, other / "lgbTest.db");
    std::filesystem::copy_file(log, other / "lgbTest.db-wal");
    add(*standalone::SqliteDatabaseFactory(other.path()).create("lgbTest", 0, 0), "of the copy");
    add(*database, "11");
    removeFiles();
    std::filesystem::copy_file(other / "lgbTest.db", file);
    add(*database, "12");
    Texts expected = countingDown(10, 1);
    expected.insert(expected.begin(), {"12", "11", "of the copy"});
    EXPECT_EQ(stored(), expected);
}

TEST_F(LogbookInUse, IsFollowedByAReader) {
    LogbookReader reader(file);
    const std::string before = reader.description().id;
    removeFiles();
    addNumbers(*database, 11, 12);
    EXPECT_EQ(reader.count(), 2);
    EXPECT_NE(reader.description().id, before);
}

TEST_F(LogbookInUse, AddsARecordAnewWhenItsFilesAreDeletedMeanwhile) {
    const Meanwhile sync(FileCall::Sync, 1, [this] { removeFiles(); });
    add(*database, "11");
    EXPECT_EQ(stored(), Texts{"11"});
}

TEST_F(LogbookInUse, AddsARecordOnceWhenItsLogIsDeletedMeanwhile) {
    const Meanwhile sync(FileCall::Sync, 1, [this] { std::filesystem::remove(log); });
    add(*database, "11");
    EXPECT_EQ(stored(), countingDown(11, 1));
}

TEST_F(LogbookInUse, IsClearedWhenItsFilesAreDeletedMeanwhile) {
    const Meanwhile sync(FileCall::Sync, 1, [this] { removeFiles(); });
    database->clear();
    EXPECT_EQ(stored(), Texts());
}

TEST_F(LogbookInUse, IsBusyWhenItsFilesAreDeletedAgainAndAgain) {
    const Meanwhile sync(FileCall::Sync, 1000, [this] {
        if (std::filesystem::exists(log) && std::filesystem::file_size(log) > 0) {  // not when it is made anew
            removeFiles();
        }
    });
    EXPECT_EQ(refusalOf([this] { add(*database, "11"); }),
              (Refusal{Failure::Busy, file.string() + ": is replaced again and again"}));
}

TEST_F(LogbookInUse, GoesOnWithoutWhatCanNotBeReadAnyMore) {
    removeFiles();
    static bool isLocked = true;  // until another file is opened
    support::setFates([](FileCall call) {
        isLocked = isLocked && call != FileCall::OpenToWrite;
        return support::Fate{isLocked && call == FileCall::Lock ? EAGAIN : 0};
    });
    {
        const support::Hurry hurry;
        EXPECT_EQ(textsIn(*database), Texts());
    }
    support::setFates(nullptr);
    add(*database, "11");
    EXPECT_EQ(stored(), Texts{"11"});
}

TEST_F(LogbookInUse, IsReadAgainWhenItIsReplacedMeanwhile) {
    addNumbers(*open(), 1, 3);
    const support::TemporaryFolder other;
    const auto whole = other / "whole.db";
    std::filesystem::copy_file(file, whole);
    support::write(file, std::string(5000, 'x'));
    std::filesystem::remove(log);
    std::filesystem::remove(index);
    const Meanwhile reading(FileCall::Read, 1, [&] { std::filesystem::rename(whole, file); });
    EXPECT_GT(LogbookReader(file).count(), 0);
}

/// Does something when it is told to: a process that has none of our files open.
class AnotherProcess {
public:
    explicit AnotherProcess(const std::function<void()>& work) {
        EXPECT_EQ(pipe(ends.data()), 0);
        child = support::startChild([&] {
            char told = 0;
            if (read(ends[0], &told, 1) == 1) {
                work();
            }
        });
    }

    AnotherProcess(const AnotherProcess&) = delete;
    AnotherProcess& operator=(const AnotherProcess&) = delete;

    ~AnotherProcess() {
        close(ends[0]);
        close(ends[1]);
    }

    /// Waits until it is done.
    void act() const {
        EXPECT_EQ(write(ends[1], "!", 1), 1);
        EXPECT_EQ(support::endOf(child), 0);
    }

private:
    std::array<int, 2> ends{};
    pid_t child = 0;
};

/// Another process deletes the index of a logbook that is in use, and goes on in what is left.
using LogbookOfTwoProcesses = SqliteLogbook;

TEST_F(LogbookOfTwoProcesses, GetsNothingBackThatWasDroppedMeanwhile) {
    const AnotherProcess other([this] {
        std::filesystem::remove(index);
        addNumbers(*open(5), 6, 8);
    });
    const auto database = open(5);
    addNumbers(*database, 1, 5);
    other.act();
    add(*database, "9");
    EXPECT_EQ(stored(), countingDown(9, 5));
}

TEST_F(LogbookOfTwoProcesses, GetsNothingBackThatWasClearedMeanwhile) {
    const AnotherProcess other([this] {
        std::filesystem::remove(index);
        open()->clear();
    });
    const auto database = open();
    addNumbers(*database, 1, 5);
    other.act();
    add(*database, "6");
    EXPECT_EQ(stored(), Texts{"6"});
}

TEST_F(LogbookOfTwoProcesses, GetsItsRecordsBackOnceThoughBothHaveThem) {
    std::string older;
    const AnotherProcess other([&] {
        const auto database = open();
        addNumbers(*database, 3, 4);
        older = support::contentOf(file);
        addNumbers(*database, 5, 8);
        removeFiles();
        support::write(file, older);
        add(*database, "9");
    });
    addNumbers(*open(), 1, 2);
    const auto database = open();
    EXPECT_EQ(database->count(), 2U);
    other.act();
    add(*database, "10");
    EXPECT_EQ(stored(), countingDown(10, 1));
}

TEST_F(LogbookOfTwoProcesses, GetsARecordBackThatWasLostInHealing) {
    const AnotherProcess other([this] {
        std::filesystem::remove(index);
        spoil("the second");
        EXPECT_EQ(textsIn(*open()), (Texts{"the third", "the first"}));
    });
    const auto database = open();
    for (const char* const text : {"the first", "the second", "the third"}) {
        add(*database, text);
    }
    other.act();
    add(*database, "the fourth");
    EXPECT_EQ(stored(), (Texts{"the fourth", "the second", "the third", "the first"}));
}

TEST_F(LogbookOfTwoProcesses, GetsItsOldestRecordBackThatWasLostInHealing) {
    const AnotherProcess other([this] {
        std::filesystem::remove(index);
        spoil("the first");
        EXPECT_EQ(textsIn(*open()), Texts{"the second"});
    });
    const auto database = open();
    add(*database, "the first");
    add(*database, "the second");
    other.act();
    add(*database, "the third");
    EXPECT_EQ(stored(), (Texts{"the third", "the first", "the second"}));
}

/// It is in use when a copy takes its place.
class LogbookReplacedInUse : public SqliteLogbook {
protected:
    void replaceBy(const std::string& database, const std::string& itsLog = "") const {
        removeFiles();
        support::write(file, database);
        if (!itsLog.empty()) {
            support::write(log, itsLog);
        }
    }

    /// A log whose last transaction counts as not committed, as after a loss of power.
    static std::string torn(std::string log) {
        constexpr std::size_t frameBytes = 24 + 1024;
        constexpr std::size_t sumAt = 16;
        char& sum = log.at(log.size() - frameBytes + sumAt);
        sum = static_cast<char>(sum ^ 1);
        return log;
    }
};

TEST_F(LogbookReplacedInUse, KeepsARecordOnceThatIsCutOffInTheCopy) {
    const auto database = open();
    addNumbers(*database, 1, 3);
    replaceBy(support::contentOf(file), torn(support::contentOf(log)));
    EXPECT_THAT(toldBy([&] { add(*database, "4"); }), HasSubstr(": put back: 3\n"));
    EXPECT_EQ(stored(), countingDown(4, 1));
}

TEST_F(LogbookReplacedInUse, KeepsBothItsOwnRecordAndTheOneThatIsCutOffInTheCopy) {
    const support::TemporaryFolder elsewhere;
    const auto copy = elsewhere / "lgbTest.db";
    const auto copiedLog = elsewhere / "lgbTest.db-wal";
    const auto database = open();
    addNumbers(*database, 1, 2);
    std::filesystem::copy_file(file, copy);
    std::filesystem::copy_file(log, copiedLog);
    doAndBeKilled([&] {
        add(*standalone::SqliteDatabaseFactory(elsewhere.path()).create("lgbTest", 0, 0).release(), "of the copy");
    });
    add(*database, "3");
    replaceBy(support::contentOf(copy), torn(support::contentOf(copiedLog)));
    add(*database, "4");
    EXPECT_EQ(stored(), (Texts{"4", "of the copy", "3", "2", "1"}));
}

/// Once more at any moment while a record is added.
class LogbookReplacedAgainInUse : public LogbookReplacedInUse {
protected:
    /// @return what is stored when 1 to 4 were stored, a copy with 1 and 2 took its place, and 5 is added
    Texts addedWhile(const std::function<void(const std::string& copy)>& happens, int moment) const {
        removeFiles();
        const auto database = open();
        addNumbers(*database, 1, 2);
        const std::string copy = support::contentOf(file);
        addNumbers(*database, 3, 4);
        replaceBy(copy);
        const auto refused = [&] {
            const Meanwhile again(
                FileCall::Status, 1, [&] { happens(copy); }, moment);
            return refusalOf([&] { add(*database, "5"); });
        }();
        if (refused) {  // while it was being opened by this process
            EXPECT_THAT(refused->first, testing::AnyOf(Failure::Busy, Failure::Missing)) << refused->second;
            add(*database, "5");
        }
        return textsIn(*database);
    }

    static constexpr int moments = 60;
};

TEST_F(LogbookReplacedAgainInUse, GoesOnWhenTheCopyIsDeleted) {
    for (int moment = 0; moment < moments; ++moment) {
        EXPECT_EQ(addedWhile([this](const std::string&) { removeFiles(); }, moment).front(), "5");
    }
}

TEST_F(LogbookReplacedAgainInUse, KeepsItsRecordsWhenItIsTheSameCopy) {
    for (int moment = 0; moment < moments; ++moment) {
        EXPECT_EQ(addedWhile([this](const std::string& copy) { replaceBy(copy); }, moment), countingDown(5, 1))
            << moment;
    }
}

TEST_F(LogbookInUse, GivesOutNoNumberThatWasGivenUpMeanwhile) {
    execute("INSERT INTO lost VALUES (11, 20, 0)");
    EXPECT_EQ(database->count(), 10U);
    EXPECT_EQ(database->fetch(1, 1).at(0).json, "9");
    add(*database, "21");
    EXPECT_EQ(LogbookReader(file).after(10, 1)[0].number, 21);
    EXPECT_EQ(toldBy([this] { textsIn(*open()); }), "");
}

TEST_F(LogbookInUse, IsFullWhenAllNumbersAreGivenOut) {
    execute("INSERT INTO lost VALUES (11, " + std::to_string((std::int64_t{1} << 62) - 1) + ", 0)");
    EXPECT_EQ(refusalOf([this] { add(*database, "11"); }),
              (Refusal{Failure::Full, file.string() + ": all numbers are given out"}));
    EXPECT_EQ(stored(), countingDown(10, 1));
}

TEST_F(LogbookInUse, IsTheSameByALinkToItsFolder) {
    const support::TemporaryFolder elsewhere;
    std::filesystem::create_directory_symlink(folder.path(), elsewhere / "link");
    const standalone::SqliteDatabaseFactory byLink(elsewhere / "link");
    add(*byLink.create("lgbTest", 0, 0), "11");
    add(*database, "12");
    EXPECT_EQ(LogbookReader(elsewhere / "link/lgbTest.db").count(), 12);
    EXPECT_EQ(stored(), countingDown(12, 1));
}

/// It is closed when something happens to its files.
using ClosedLogbook = SqliteLogbook;

TEST_F(ClosedLogbook, IsHealedFromItsLogWhenItIsOlderThanWhenItWasClosed) {
    addNumbers(*open(), 1, 10);
    const std::string older = support::contentOf(file);
    addNumbers(*open(), 11, 20);
    support::write(file, older);
    EXPECT_THAT(toldBy([this] { open(); }), HasSubstr("error libTqZelPlatform: " + file.string() +
                                                      ": damaged: it is older than when it was closed; healed with 20 "
                                                      "records, the damaged files are kept as "));
    EXPECT_EQ(stored(), countingDown(20, 1));
}

TEST_F(ClosedLogbook, NamesWhatAnOlderCopyLacks) {
    addNumbers(*open(), 1, 10);
    const std::string older = support::contentOf(file);
    addNumbers(*open(), 11, 500);
    support::write(file, older);
    EXPECT_THAT(toldBy([this] { open(); }), HasSubstr("; lost: "));
    add(*open(), "501");
    EXPECT_EQ(stored().front(), "501");
    EXPECT_EQ(LogbookReader(file).before(INT64_MAX, 1)[0].number, 501);
}

/// Made by somebody who knows how it is checked.
TEST_F(ClosedLogbook, BelievesNoMarkThatCanNotBe) {
    for (const std::int64_t newest : {std::int64_t{-1}, std::int64_t{1} << 62, INT64_MAX}) {
        std::filesystem::remove(file);
        std::filesystem::remove(log);
        addNumbers(*open(), 1, 10);
        std::string mark = support::contentOf(log).substr(0, 40);
        for (std::size_t i = 0; i < 8; ++i) {
            mark[4 + i] = static_cast<char>(static_cast<std::uint64_t>(newest) >> (8 * i));
        }
        mark.replace(12, 4, 4, '\0');
        const auto sum = crc32_z(0, reinterpret_cast<const unsigned char*>(mark.data()), mark.size());
        for (std::size_t i = 0; i < 4; ++i) {
            mark[12 + i] = static_cast<char>(sum >> (8 * i));
        }
        support::write(log, mark);
        EXPECT_EQ(toldBy([this] { add(*open(), "11"); }), "");
        EXPECT_EQ(stored(), countingDown(11, 1));
    }
}

TEST_F(ClosedLogbook, TellsThatItsLogIsMissing) {
    addNumbers(*open(), 1, 10);
    std::filesystem::remove(log);
    std::filesystem::remove(index);
    EXPECT_THAT(toldBy([this] { open(); }),
                HasSubstr("warning libTqZelPlatform: " + log.string() +
                          ": is missing; if the logbook was not closed, the newest records are gone\n"));
    EXPECT_EQ(stored(), countingDown(10, 1));
}

TEST_F(ClosedLogbook, TellsThatItsLogWasDeletedWhenItWasNotClosed) {
    addNumbersAndBeKilled(1, 10);
    std::filesystem::remove(log);
    EXPECT_THAT(toldBy([this] { open(); }),
                HasSubstr("error libTqZelPlatform: " + log.string() +
                          ": was deleted; the newest records are gone unless the logbook had been closed\n"));
    add(*open(), "11");
    EXPECT_EQ(stored().front(), "11");
}

TEST_F(ClosedLogbook, SaysNothingWhenNothingHappened) {
    EXPECT_EQ(toldBy([this] {
                  addNumbers(*open(), 1, 10);
                  addNumbers(*open(), 11, 20);
                  open()->clear();
                  open();
              }),
              "");
}

TEST_F(ClosedLogbook, IsMadeAnewBesideALogThatHoldsSomething) {
    addNumbersAndBeKilled(1, 10);
    std::filesystem::remove(file);
    EXPECT_THAT(toldBy([this] { open(); }),
                HasSubstr("error libTqZelPlatform: " + log.string() + ": is the log of another logbook, and kept as " +
                          (folder / "lgbTest.damaged-1.db-wal").string() + "\n"));
    add(*open(), "a");
    EXPECT_EQ(stored(), Texts{"a"});
}

TEST_F(ClosedLogbook, IsOpenedBesideAnEmptyJournal) {
    addNumbers(*open(), 1, 3);
    support::write(folder / "lgbTest.db-journal", "");
    EXPECT_EQ(stored(), countingDown(3, 1));
}

TEST_F(ClosedLogbook, IsMadeInAFolderWithALogThatWasLeft) {
    addNumbers(*open(), 1, 10);
    std::filesystem::remove(file);
    add(*open(), "a");
    EXPECT_EQ(stored(), Texts{"a"});
}

}  // namespace
