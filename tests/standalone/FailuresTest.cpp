// What keeps a logbook from being used, told by its kind.

#include "Hurry.h"
#include "SqliteLogbook.h"
#include "calls.h"
#include "child.h"

#include <standalone/LogbookReader.h>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <set>

namespace {

using standalone::Failure;
using standalone::LogbookReader;
using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::Pair;
using testing::StartsWith;

using LogbookFailure = SqliteLogbook;

TEST_F(LogbookFailure, IsBusyWhenAnotherHoldsItLonger) {
    const auto database = open();
    SQLite::Database other(file.string(), SQLite::OPEN_READWRITE);
    const SQLite::Transaction transaction(other, SQLite::TransactionBehavior::IMMEDIATE);
    const support::Hurry hurry;
    EXPECT_EQ(refusalOf([&] { add(*database, "a"); }),
              (Refusal{Failure::Busy, file.string() + ": database is locked"}));
}

TEST_F(LogbookFailure, IsBusyWhileAnotherOpensOrHealsItLonger) {
    open();
    const int lock = ::open((file.string() + "-lock").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    {
        const support::Hurry hurry;
        EXPECT_EQ(refusal(), (Refusal{Failure::Busy, file.string() + ": another process is opening or healing it"}));
    }
    close(lock);
    EXPECT_EQ(refusal(), std::nullopt);
}

TEST_F(LogbookFailure, IsBusyWhileAnotherReadsAFileWithoutALog) {
    add(*open(), "a");
    SQLite::Database other(file.string(), SQLite::OPEN_READWRITE);
    other.exec("PRAGMA journal_mode = DELETE");
    {
        const SQLite::Transaction transaction(other);
        other.execAndGet("SELECT count(*) FROM record");
        const support::Hurry hurry;
        EXPECT_EQ(refusal(), (Refusal{Failure::Busy, file.string() + ": database is locked"}));
    }
    EXPECT_EQ(stored(), Texts{"a"});
}

TEST_F(LogbookFailure, IsFullForAnEntryOfMoreThanAMebibyte) {
    const auto database = open();
    const std::string largest(std::size_t{1} << 20, 'x');
    EXPECT_EQ(refusalOf([&] { add(*database, largest + "x"); }),
              (Refusal{Failure::Full, file.string() + ": takes no entry of 1048577 bytes, only of up to 1048576"}));
    EXPECT_EQ(database->count(), 0U);
    add(*database, largest);
    EXPECT_EQ(stored(), Texts{largest});
}

TEST_F(LogbookFailure, IsForeignWhereItsFolderIsNone) {
    open();
    EXPECT_EQ(refusalOf([this] { standalone::SqliteDatabaseFactory(file / "folder").create("lgbTest", 0, 0); }),
              (Refusal{Failure::Foreign, (file / "folder").string() + ": can't make the folder: Not a directory"}));
}

TEST_F(LogbookFailure, IsForeignWhenItIsOfASchemaThatNeverWas) {
    open();
    execute("PRAGMA user_version = 0; CREATE TABLE more (id INTEGER)");
    const auto refused = refusal();
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->first, Failure::Foreign);
    EXPECT_THAT(refused->second, StartsWith(file.string() + ": written by schema 0, this program reads "));
}

/// While it lasts, one of the calls of a kind fails.
class OneFailingCall {
public:
    OneFailingCall(support::FileCall kind, int which, int reason = EIO) {
        failing = kind;
        left = which;
        error = reason;
        support::setFates(
            [](support::FileCall call) { return support::Fate{call == failing && left-- == 0 ? error : 0}; });
    }

    OneFailingCall(const OneFailingCall&) = delete;
    OneFailingCall& operator=(const OneFailingCall&) = delete;

    ~OneFailingCall() { support::setFates(nullptr); }

private:
    static inline support::FileCall failing;
    static inline int left = 0;
    static inline int error = 0;
};

TEST_F(LogbookFailure, IsOfMemoryWhenNoMoreFilesMayBeOpened) {
    open();
    const OneFailingCall opening(support::FileCall::OpenToWrite, 0, EMFILE);
    EXPECT_EQ(refusal(), (Refusal{Failure::Memory, file.string() + "-lock: Too many open files"}));
}

TEST_F(LogbookFailure, IsOfInputAndOutputWhenNothingTellsThatItHasALog) {
    add(*open(), "a");
    SQLite::Database(file.string(), SQLite::OPEN_READWRITE).exec("PRAGMA journal_mode = DELETE");
    {
        const OneFailingCall writing(support::FileCall::Write, 0);
        EXPECT_EQ(refusal(), (Refusal{Failure::InputOutput, file.string() + ": disk I/O error"}));
    }
    EXPECT_EQ(stored(), Texts{"a"});
}

/// What the making of a logbook is refused with, each time that another of the calls of a kind fails.
class UnmadeLogbook : public SqliteLogbook {
protected:
    std::set<Refusal> refusals(support::FileCall kind) const {
        std::set<Refusal> all;
        constexpr int calls = 20;
        for (int which = 0; which < calls; ++which) {
            std::filesystem::remove(file);
            const OneFailingCall failing(kind, which);
            if (const auto refused = refusal()) {
                all.insert(*refused);
            }
        }
        return all;
    }

    void expectToBeMadeNow() const {
        add(*open(), "a");
        EXPECT_EQ(stored(), Texts{"a"});
    }
};

TEST_F(UnmadeLogbook, IsOfInputAndOutputWhenNothingCanBeRead) {
    const auto all = refusals(support::FileCall::Read);
    EXPECT_THAT(all, Each(Pair(Failure::InputOutput, StartsWith(file.string()))));
    EXPECT_THAT(all,
                Contains(Refusal(Failure::InputOutput, file.string() + "-making: disk I/O error: Input/output error")));
    expectToBeMadeNow();
}

TEST_F(UnmadeLogbook, IsOfInputAndOutputWhenNothingCanBeSynced) {
    std::set<Refusal> expected{{Failure::InputOutput, file.string() + "-making: Input/output error"}};
    for (std::filesystem::path above = file; above.has_relative_path();) {
        above = above.parent_path();
        expected.emplace(Failure::InputOutput, above.string() + ": Input/output error");
    }
    EXPECT_EQ(refusals(support::FileCall::Sync), expected);
    expectToBeMadeNow();
}

TEST_F(LogbookFailure, IsMissingWhenThereIsNoneToRead) {
    EXPECT_EQ(refusalOf([&] { LogbookReader reader(file); }),
              (Refusal{Failure::Missing, file.string() + ": there is no such logbook"}));
}

/// What root may do is taken away for as long as this lasts.
class WithoutRights {
public:
    WithoutRights() { become(nobody, nobody); }

    WithoutRights(const WithoutRights&) = delete;
    WithoutRights& operator=(const WithoutRights&) = delete;

    ~WithoutRights() { become(user, user); }

private:
    static constexpr uid_t nobody = 65534;

    void become(uid_t real, uid_t effective) const {
        if (user == 0) {
            EXPECT_EQ(setresuid(real, effective, user), 0);
        }
    }

    const uid_t user = getuid();
};

/// Of a logbook with one record, in a folder that is everybody's.
class RightsToALogbook : public LogbookFailure {
protected:
    RightsToALogbook() {
        add(*open(), "a");
        chmod(folder.path().c_str(), 0777);
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            chmod(entry.path().c_str(), 0666);
        }
    }

    const Refusal denied{Failure::Denied, file.string() + ": Permission denied"};
};

TEST_F(RightsToALogbook, AreNeededToOpenIt) {
    chmod(file.c_str(), 0);
    const WithoutRights nobody;
    EXPECT_EQ(refusal(), denied);
}

TEST_F(RightsToALogbook, AreNeededToWriteToIt) {
    chmod(file.c_str(), 0444);
    const WithoutRights nobody;
    EXPECT_EQ(refusal(), denied);
    EXPECT_EQ(LogbookReader(file).count(), 1);
}

TEST_F(RightsToALogbook, AreNeededToReadIt) {
    chmod(file.c_str(), 0);
    const WithoutRights nobody;
    EXPECT_EQ(refusalOf([&] { LogbookReader reader(file); }), denied);
}

TEST_F(RightsToALogbook, AreNeededToListItsFolder) {
    chmod(folder.path().c_str(), 0333);
    {
        const WithoutRights nobody;
        EXPECT_EQ(refusal(), (Refusal{Failure::Denied, folder.path().string() + ": Permission denied"}));
    }
    chmod(folder.path().c_str(), 0777);
}

/// A file system of its own, which can be made read-only: needs the right to mount.
class LogbookOnItsOwnMedium : public SqliteLogbook {
protected:
    void SetUp() override {
        if (mount("none", folder.path().c_str(), "tmpfs", 0, "size=4m") != 0) {
            GTEST_SKIP() << "nothing can be mounted here";
        }
        mounted = true;
    }

    void TearDown() override {
        if (mounted) {
            umount2(folder.path().c_str(), MNT_DETACH);
        }
    }

    void makeReadOnly(bool readOnly) const {
        const unsigned long flags = MS_REMOUNT | (readOnly ? MS_RDONLY : 0);
        ASSERT_EQ(mount("none", folder.path().c_str(), "tmpfs", flags, "size=4m"), 0);
    }

    bool mounted = false;
};

TEST_F(LogbookOnItsOwnMedium, OpensAndShowsWhenItCanNotBeWritten) {
    addNumbers(*open(), 1, 10);
    makeReadOnly(true);
    const auto database = open();
    EXPECT_EQ(textsIn(*database), countingDown(10, 1));
    EXPECT_EQ(database->count(), 10u);
}

TEST_F(LogbookOnItsOwnMedium, RefusesToAddUntilItCanBeWrittenAgain) {
    addNumbers(*open(), 1, 10);
    makeReadOnly(true);
    const auto database = open();
    const auto refused = refusalOf([&] { add(*database, "11"); });
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->first, Failure::ReadOnly);
    EXPECT_THAT(refused->second, testing::EndsWith(": Read-only file system"));
    EXPECT_EQ(refusalOf([&] { database->clear(); })->first, Failure::ReadOnly);
    makeReadOnly(false);
    add(*database, "11");
    EXPECT_EQ(textsIn(*database), countingDown(11, 1));
    EXPECT_EQ(stored(), countingDown(11, 1));
}

TEST_F(LogbookOnItsOwnMedium, ShowsWhatAKilledWriterLeft) {
    addNumbersAndBeKilled(1, 10);
    makeReadOnly(true);
    EXPECT_EQ(textsIn(*open()), countingDown(10, 1));
}

TEST_F(LogbookOnItsOwnMedium, IsRefusedWhenItIsDamagedAndCanNotBeHealed) {
    add(*open(), "a");
    execute("INSERT INTO lost VALUES (8, 7, 0)");
    makeReadOnly(true);
    EXPECT_EQ(refusal(),
              (Refusal{Failure::Damaged, file.string() + ": damaged: its list of lost numbers is not in order"}));
}

TEST_F(LogbookOnItsOwnMedium, ShowsWhatIsNotDamagedWhenItCanNotBeHealed) {
    add(*open(), "a");
    add(*open(), "b");
    execute("UPDATE record SET json = 'x' WHERE number = 2");
    makeReadOnly(true);
    EXPECT_EQ(stored(), Texts{"a"});
}

TEST_F(LogbookOnItsOwnMedium, IsNotMadeWhereNothingCanBeWritten) {
    makeReadOnly(true);
    EXPECT_EQ(refusal()->first, Failure::ReadOnly);
}

/// A medium that can be filled to its last byte.
class LogbookOnAFullDisk : public LogbookOnItsOwnMedium {
protected:
    void fill() const { support::write(filler, std::string(std::size_t{4} * 1024 * 1024, 'x')); }

    void free() const { std::filesystem::remove(filler); }

    const std::filesystem::path filler = folder / "filler";
};

TEST_F(LogbookOnAFullDisk, IsRefusedWhenThereIsNoRoomForANewOne) {
    fill();
    EXPECT_EQ(refusal()->first, Failure::Full);
    free();
    add(*open(), "a");
    EXPECT_EQ(stored(), Texts{"a"});
}

TEST_F(LogbookOnAFullDisk, TakesNoneOfItForMoreRecordsThanItHasRoomFor) {
    constexpr std::uint32_t beyondAll = 4000000000;
    addNumbers(*open(), 1, 3);
    const auto before = std::filesystem::space(folder.path()).available;
    factory().resize("lgbTest", beyondAll);
    EXPECT_EQ(stored(), countingDown(3, 1));
    EXPECT_EQ(std::filesystem::space(folder.path()).available, before);
    EXPECT_EQ(refusalOf([&] { factory().create("lgbOther", 0, beyondAll); }),
              (Refusal{Failure::Full, (folder / "lgbOther.db-making").string() + ": No space left on device"}));
}

TEST_F(LogbookOnAFullDisk, IsOpenedThoughItsIndexWasCutShort) {
    addNumbersAndBeKilled(1, 3);
    std::filesystem::resize_file(index, 3);
    fill();
    EXPECT_EQ(refusal(), std::nullopt);
    EXPECT_EQ(stored(), countingDown(3, 1));
}

TEST_F(LogbookOnAFullDisk, PutsBackTheNewestThatItHasRoomFor) {
    const auto database = open();
    addNumbers(*database, 1, 5);
    const std::string older = support::contentOf(file);
    const std::string large(4000, 'x');
    for (int number = 1; number <= 200; ++number) {
        add(*database, large + std::to_string(number));
    }
    removeFiles();
    support::write(file, older);
    fill();
    const auto refused = refusalOf([&] { add(*database, "the next"); });
    if (refused) {
        EXPECT_EQ(refused->first, Failure::Full);
        free();
        add(*database, "the next");
    }
    const Texts all = stored();
    EXPECT_EQ(all.front(), "the next");
    EXPECT_NE(std::find(all.begin(), all.end(), large + "200"), all.end());
}

TEST_F(LogbookOnAFullDisk, LeavesWhatIsDamagedOutWhereThereIsNoRoomForHealing) {
    for (const char* const text : {"the first", "the second", "the third"}) {
        add(*open(), text);
    }
    spoil("the second");
    fill();
    EXPECT_THAT(toldBy([this] {
                    EXPECT_EQ(stored(), (Texts{"the third", "the first"}));
                }),
                HasSubstr("; the logbook can't be healed, and what is damaged is left out\n"));
    free();
    EXPECT_THAT(toldBy([this] {
                    EXPECT_EQ(stored(), (Texts{"the third", "the first"}));
                }),
                HasSubstr("; healed with 2 records"));
}

TEST_F(LogbookOnAFullDisk, IsNotMadeAnewAtTheCostOfALogThatWasLeft) {
    addNumbersAndBeKilled(1, 3);
    const std::string left = support::contentOf(log);
    for (const auto& each : {file, index, folder / "lgbTest.db-lock"}) {
        std::filesystem::remove(each);
    }
    fill();
    EXPECT_EQ(refusal()->first, Failure::Full);
    EXPECT_TRUE(support::contentOf(log) == left);
}

}  // namespace
