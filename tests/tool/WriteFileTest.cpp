#include "TemporaryFolder.h"
#include "calls.h"
#include "child.h"
#include "foundFile.h"
#include "writeFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::UnorderedElementsAre;

TEST(FoundFile, IsNotWhatHasTakenItsPlaceMeanwhile) {
    const support::TemporaryFolder folder;
    const fs::path name = folder / "file";
    EXPECT_EQ(mkfifo(name.c_str(), 0600), 0);
    const tool::FilePlace place = tool::placeOf(name);
    support::write(folder / "precious", "precious");
    fs::remove(name);
    fs::create_symlink(folder / "precious", name);
    EXPECT_THROW(tool::opened(place, O_WRONLY), tool::Reason);
    fs::remove(name);
    fs::create_hard_link(folder / "precious", name);
    EXPECT_THROW(tool::opened(place, O_WRONLY), tool::Reason);
}

class WriteFile : public testing::Test {
protected:
    void write(const std::string& text) const {
        tool::writeFile(file, [&](std::ostream& stream, bool) { stream << text; });
    }

    static fs::perms permissionsOf(const fs::path& path) { return fs::status(path).permissions(); }

    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(folder.path())) {
            found.push_back(entry.path().filename());
        }
        return found;
    }

    support::TemporaryFolder folder;
    const fs::path file = folder / "lines";
};

TEST_F(WriteFile, KeepsThePermissionsOfTheOlderFile) {
    support::write(file, "old");
    fs::permissions(file, fs::perms(0604));
    write("new");
    EXPECT_EQ(support::contentOf(file), "new");
    EXPECT_EQ(permissionsOf(file), fs::perms(0604));
}

TEST_F(WriteFile, GivesANewFileTheUsualPermissions) {
    const mode_t before = umask(027);
    write("new");
    umask(before);
    EXPECT_EQ(permissionsOf(file), fs::perms(0640));
}

TEST_F(WriteFile, ReplacesTheOlderFileOnceTheNewOneIsOnTheDisk) {
    support::write(file, "old");
    support::syncs = 0;
    tool::writeFile(file, [&](std::ostream& stream, bool) {
        stream << "new" << std::flush;
        EXPECT_EQ(support::contentOf(file), "old");
    });
    EXPECT_EQ(support::contentOf(file), "new");
    EXPECT_EQ(support::syncs, 1);
}

TEST_F(WriteFile, LeavesTheOlderFileAndNothingElseWhenItFails) {
    support::write(file, "old");
    const auto fail = [](std::ostream&, bool) { throw std::runtime_error("no more"); };
    EXPECT_THROW(tool::writeFile(file, fail), std::runtime_error);
    EXPECT_EQ(support::contentOf(file), "old");
    EXPECT_THAT(names(), UnorderedElementsAre("lines"));
}

TEST_F(WriteFile, LeavesTheOlderFileAndNothingElseWhenItIsInterrupted) {
    support::write(file, "old");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const pid_t writer = support::startChild([&] {
            std::signal(signal, SIG_DFL);  // what runs in the background may ignore it
            tool::writeFile(file, [&](std::ostream& stream, bool) { stream << "new" << std::flush, raise(signal); });
        });
        const int status = support::endOf(writer);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
        EXPECT_EQ(support::contentOf(file), "old");
        EXPECT_THAT(names(), UnorderedElementsAre("lines"));
    }
}

TEST_F(WriteFile, GivesNoRightsToRunTheFileAsItsOwner) {
    support::write(file, "old");
    EXPECT_EQ(chmod(file.c_str(), 06755), 0);
    write("new");
    EXPECT_EQ(permissionsOf(file), fs::perms(0755));
}

TEST_F(WriteFile, TouchesNoOtherFile) {
    support::write(folder / "lines.part", "mine");
    write("new");
    EXPECT_EQ(support::contentOf(folder / "lines.part"), "mine");
    EXPECT_THAT(names(), UnorderedElementsAre("lines", "lines.part"));
}

TEST_F(WriteFile, ReplacesWhatALinkLeadsTo) {
    fs::create_symlink("target", file);
    for (const char* const text : {"first", "second"}) {  // the link leads nowhere at first
        write(text);
        EXPECT_TRUE(fs::is_symlink(file));
        EXPECT_EQ(support::contentOf(folder / "target"), text);
    }
    EXPECT_THAT(names(), UnorderedElementsAre("lines", "target"));
}

}  // namespace
