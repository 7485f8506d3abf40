// Who is root works in a folder as its owner, whatever that one has prepared there.

#include "ToolFixture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr uid_t somebody = 65533;
constexpr uid_t somebodyElse = 65532;

struct stat stateOf(const fs::path& file) {
    struct stat found {};

    EXPECT_EQ(lstat(file.c_str(), &found), 0) << file;
    return found;
}

/// Of somebody who has no account; the tool is called by root.
class FolderOfSomebody : public ToolFixture {
protected:
    void SetUp() override {
        if (geteuid() != 0) {
            GTEST_SKIP() << "only root works as somebody else";
        }
        giveTo(somebody, folder.path());
        chmod(mine.path().c_str(), 0700);
    }

    static void giveTo(uid_t user, const fs::path& file) { EXPECT_EQ(lchown(file.c_str(), user, user), 0) << file; }

    /// What somebody prepares.
    void link(const fs::path& name, const fs::path& target) const {
        fs::create_symlink(target, name);
        giveTo(somebody, name);
    }

    const support::TemporaryFolder mine;
};

TEST_F(FolderOfSomebody, GetsFilesThatTheyCanWrite) {
    add("service info --text noted");
    for (const auto& entry : fs::directory_iterator(folder.path())) {
        EXPECT_EQ(stateOf(entry.path()).st_uid, somebody) << entry.path();
        EXPECT_NE(stateOf(entry.path()).st_gid, 0U) << entry.path();
        EXPECT_EQ(stateOf(entry.path()).st_mode & 0007, 0U) << entry.path();
    }
}

TEST_F(FolderOfSomebody, MakesRootWriteNothingElsewhere) {
    for (const char* const name : {"lgbService.db", "lgbService.db-wal", "lgbService.db-shm", "lgbService.db-lock",
                                   "lgbService.db-making", "lgbService.db-healed"}) {
        link(folder / name, mine / "made");
        tool("add service info --text noted");
        EXPECT_FALSE(fs::exists(mine / "made")) << name;
        for (const auto& entry : fs::directory_iterator(folder.path())) {
            fs::remove(entry.path());
        }
    }
}

TEST_F(FolderOfSomebody, ShowsNothingThatTheyCanNotRead) {
    store("lgbService", std::vector<std::string>{freeText("secret")});
    fs::rename(folder / "lgbService.db", mine / "lgbService.db");
    chmod((mine / "lgbService.db").c_str(), 0600);
    for (const auto& entry : fs::directory_iterator(folder.path())) {
        fs::remove(entry.path());
    }
    fs::create_hard_link(mine / "lgbService.db", folder / "lgbService.db");
    EXPECT_EQ(failure("show service"),
              "tqzel-logbook: " + (folder / "lgbService.db").string() + ": Permission denied\n");
}

TEST_F(FolderOfSomebody, IsMadeByThemWithinTheirs) {
    EXPECT_THAT(tool("add service info --text noted --folder " + (folder / "new").string()).errors,
                HasSubstr("made the folder"));
    EXPECT_EQ(stateOf(folder / "new").st_uid, somebody);
}

TEST_F(FolderOfSomebody, GetsAnOutputOfItsCallerElsewhere) {
    add("service info --text noted");
    EXPECT_EQ(output("export service --output " + (mine / "lines").string()), "");
    EXPECT_EQ(stateOf(mine / "lines").st_uid, 0U);
    EXPECT_THAT(support::contentOf(mine / "lines"), HasSubstr("noted"));
}

TEST_F(FolderOfSomebody, TakesWhatItsCallerImportsFromElsewhere) {
    add("service info --text noted");
    output("export service --output " + (mine / "lines").string());
    EXPECT_EQ(output("import service " + (mine / "lines").string()), "1 entry imported.\n");
}

TEST_F(FolderOfSomebody, LetsItsCallerImportNothingThroughTheirLink) {
    support::write(mine / "lines", "of root");
    link(folder / "lines", mine / "lines");
    EXPECT_EQ(failure("import service " + (folder / "lines").string()),
              "tqzel-logbook: " + (folder / "lines").string() + ": is somebody else's link, and not followed\n");
}

TEST_F(FolderOfSomebody, OfRootMayNotBeReplacedByAGroup) {
    giveTo(0, folder.path());
    EXPECT_EQ(chown(folder.path().c_str(), 0, somebody), 0);
    chmod(folder.path().c_str(), 0770);
    fs::create_directory(folder / "logbooks");
    EXPECT_EQ(failure("add service info --text noted --folder " + (folder / "logbooks").string()),
              "tqzel-logbook: " + (folder / "logbooks").string() +
                  ": root does not use a folder that others can replace, as they can in " + folder.path().string() +
                  "\n");
}

TEST_F(FolderOfSomebody, MayNotBeReplacedByOthers) {
    fs::create_directory(folder / "logbooks");
    EXPECT_EQ(failure("add service info --text noted --folder " + (folder / "logbooks").string()),
              "tqzel-logbook: " + (folder / "logbooks").string() +
                  ": root does not use a folder that others can replace, as they can in " + folder.path().string() +
                  "\n");
    EXPECT_TRUE(fs::is_empty(folder / "logbooks"));
}

TEST_F(FolderOfSomebody, IsNotUsedWhereAnybodyMayWrite) {
    giveTo(0, folder.path());
    chmod(folder.path().c_str(), 01777);
    EXPECT_EQ(failure("show service"), "tqzel-logbook: " + folder.path().string() +
                                           ": anybody may write to this folder of root's; root does not use it\n");
}

TEST_F(FolderOfSomebody, IsUsedByItsOwnName) {
    fs::create_directory_symlink(folder.path(), mine / "link");
    const std::string byLink = " --folder " + (mine / "link").string();
    EXPECT_EQ(output("add service info --text noted" + byLink), "");
    EXPECT_THAT(output("check service" + byLink), HasSubstr((folder / "lgbService.db").string() + ": sound"));
}

TEST_F(FolderOfSomebody, IsShownToRootByAPagerThatRunsNothing) {
    add("service info --text noted");
    EXPECT_THAT(onTerminal("show service", "PAGER='echo secure $LESSSECURE; cat'"), HasSubstr("secure 1\n"));
}

TEST_F(FolderOfSomebody, IsForItsGroupWhenItSaysSoAndNeverForOthers) {
    EXPECT_EQ(chown(folder.path().c_str(), somebody, somebodyElse), 0);
    chmod(folder.path().c_str(), 02770);
    const std::string asMember = "umask 077; setpriv --reuid=65531 --regid=65532 --clear-groups env ";
    EXPECT_EQ(support::run("umask 022; " + command("add service info --text first")).exitCode, 0);
    EXPECT_EQ(support::run(asMember + command("add service info --text second")).exitCode, 0);
    EXPECT_THAT(output("show service --count 1"), HasSubstr("second"));
    for (const auto& entry : fs::directory_iterator(folder.path())) {
        EXPECT_EQ(stateOf(entry.path()).st_mode & 0777, 0660U) << entry.path();
        EXPECT_EQ(stateOf(entry.path()).st_gid, somebodyElse) << entry.path();
    }
    const std::string asAnother = "setpriv --reuid=65530 --regid=65530 --clear-groups env ";
    EXPECT_EQ(support::run(asAnother + command("show service")).exitCode, 1);
}

TEST_F(FolderOfSomebody, GetsFilesThatOthersCanNotOpenWhateverTheUmask) {
    chmod(folder.path().c_str(), 0755);
    EXPECT_EQ(support::run("umask 0; " + command("add service info --text noted")).errors, "");
    for (const auto& entry : fs::directory_iterator(folder.path())) {
        EXPECT_EQ(stateOf(entry.path()).st_mode & 0007, 0U) << entry.path();
    }
}

/// An output that replaces what somebody has prepared.
using OutputToSomebody = FolderOfSomebody;

TEST_F(OutputToSomebody, NeverRunsAsAnother) {
    add("service info --text noted");
    const auto prepared = folder / "lines";
    support::write(prepared, "");
    EXPECT_EQ(chown(prepared.c_str(), somebody, somebodyElse), 0);
    chmod(prepared.c_str(), 06777);
    EXPECT_EQ(output("export service --output " + prepared.string()), "");
    EXPECT_EQ(stateOf(prepared).st_mode & 07777, 0777U);
    EXPECT_EQ(stateOf(prepared).st_uid, somebody);
    EXPECT_EQ(stateOf(prepared).st_gid, somebodyElse);
}

TEST_F(OutputToSomebody, FollowsNoLinkOfTheirs) {
    add("service info --text noted");
    support::write(mine / "precious", "precious");
    link(folder / "lines", mine / "precious");
    EXPECT_EQ(failure("export service --output " + (folder / "lines").string()),
              "tqzel-logbook: " + (folder / "lines").string() + ": is somebody else's link, and not followed\n");
    EXPECT_EQ(support::contentOf(mine / "precious"), "precious");
}

/// Each name that a program makes meanwhile is replaced by a link at once.
TEST_F(OutputToSomebody, IsWrittenToTheFileThatWasMade) {
    add("service info --text noted");
    const auto precious = mine / "precious";
    support::write(precious, "precious");
    const pid_t watcher = fork();
    if (watcher == 0) {
        EXPECT_EQ(setuid(somebody), 0);
        while (true) {
            std::error_code none;
            for (const auto& entry : fs::directory_iterator(folder.path(), none)) {
                if (entry.path().filename().string().rfind("lines", 0) == 0) {
                    fs::remove(entry.path(), none);
                    fs::create_symlink(precious, entry.path(), none);
                }
            }
        }
    }
    for (int tries = 0; tries < 20; ++tries) {
        tool("export service --output " + (folder / "lines").string());
        EXPECT_EQ(support::contentOf(precious), "precious");
    }
    kill(watcher, SIGKILL);
    EXPECT_EQ(waitpid(watcher, nullptr, 0), watcher);
}

/// What is a pipe when it is looked at is a link when it is opened.
TEST_F(OutputToSomebody, IsAppendedToNothingButThePipeThatWasFound) {
    add("service info --text noted");
    const auto precious = mine / "precious";
    support::write(precious, "precious");
    const fs::path pipe = folder / "pipe";
    EXPECT_EQ(mkfifo(pipe.c_str(), 0666), 0);
    giveTo(somebody, pipe);
    link(folder / "link", precious);
    const int reader = open(pipe.c_str(), O_RDWR | O_NONBLOCK);
    const pid_t swapper = fork();
    if (swapper == 0) {
        EXPECT_EQ(setuid(somebody), 0);
        while (true) {
            renameat2(AT_FDCWD, pipe.c_str(), AT_FDCWD, (folder / "link").c_str(), RENAME_EXCHANGE);
        }
    }
    for (int tries = 0; tries < 100; ++tries) {
        tool("export service --output " + pipe.string());
        EXPECT_EQ(support::contentOf(precious), "precious");
    }
    kill(swapper, SIGKILL);
    EXPECT_EQ(waitpid(swapper, nullptr, 0), swapper);
    close(reader);
}

/// Of another user who calls the tool, not root.
TEST_F(OutputToSomebody, GivesNoMoreRightsThanToANewFileWhereItsOwnerCanNotStay) {
    support::write(folder / "lgbService.jsonl", "");
    giveTo(somebodyElse, folder / "lgbService.jsonl");
    chmod((folder / "lgbService.jsonl").c_str(), 0666);
    add("service info --text noted");
    const support::Outcome outcome =
        support::run("umask 027; setpriv --reuid=65533 --regid=65533 --clear-groups env " +
                     command("export service --output " + (folder / "lgbService.jsonl").string()));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(stateOf(folder / "lgbService.jsonl").st_uid, somebody);
    EXPECT_EQ(stateOf(folder / "lgbService.jsonl").st_mode & 0777, 0640U);
}

}  // namespace
