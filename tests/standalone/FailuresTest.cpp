// What keeps a logbook from being used, told by its kind.

#include "SqliteLogbook.h"

#include <standalone/LogbookReader.h>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using standalone::Failure;
using standalone::LogbookReader;

using LogbookFailure = SqliteLogbook;

TEST_F(LogbookFailure, IsBusyWhenAnotherHoldsItLonger) {
    const auto database = open();
    SQLite::Database other(file.string(), SQLite::OPEN_READWRITE);
    const SQLite::Transaction transaction(other, SQLite::TransactionBehavior::IMMEDIATE);
    EXPECT_EQ(refusalOf([&] { add(*database, "a"); }),
              (Refusal{Failure::Busy, file.string() + ": database is locked"}));
}

TEST_F(LogbookFailure, IsMissingWhenThereIsNoneToRead) {
    EXPECT_EQ(refusalOf([&] { LogbookReader reader(file); }),
              (Refusal{Failure::Missing, file.string() + ": there is no such logbook"}));
}

TEST_F(LogbookFailure, IsDeniedToThoseWithoutRights) {
    if (getuid() == 0) {
        GTEST_SKIP() << "root has every right";
    }
    add(*open(), "a");
    chmod(file.c_str(), 0);
    EXPECT_EQ(refusal(), (Refusal{Failure::Denied, file.string() + ": Permission denied"}));
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
    if (fork() == 0) {
        addNumbers(*open().release(), 1, 10);
        _exit(0);
    }
    ASSERT_NE(wait(nullptr), -1);
    makeReadOnly(true);
    EXPECT_EQ(textsIn(*open()), countingDown(10, 1));
}

TEST_F(LogbookOnItsOwnMedium, IsNotMadeWhereNothingCanBeWritten) {
    makeReadOnly(true);
    EXPECT_EQ(refusal()->first, Failure::ReadOnly);
}

TEST_F(LogbookOnItsOwnMedium, IsRefusedOnAFullDiskThatHasNoRoomForIt) {
    support::write(folder / "filler", std::string(std::size_t{4} * 1024 * 1024, 'x'));
    EXPECT_EQ(refusal()->first, Failure::Full);
    std::filesystem::remove(folder / "filler");
    add(*open(), "a");
    EXPECT_EQ(stored(), Texts{"a"});
}

}  // namespace
