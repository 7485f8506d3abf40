// Folders and files that somebody has prepared for those who look into them or write there.

#include "ToolFixture.h"
#include "preparedFiles.h"
#include "preparedLogs.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::AnyOf;
using testing::Ge;
using testing::HasSubstr;
using testing::Le;
using testing::Not;

const std::vector<std::string> readingCommands{"show customer", "check customer", "export customer", "stats customer",
                                               "report --output /dev/null"};
const std::vector<std::string> writingCommands{"add customer info 20", "clear customer --yes",
                                               "resize customer 9 --yes", "import customer /dev/null"};

/// Whatever was prepared, the tool comes to its end, with little memory, and leaves alone what is elsewhere.
class PreparedFolder : public ToolFixture {
protected:
    support::Outcome limited(const std::string& arguments) const {
        support::Outcome outcome =
            support::run("TQZEL_LOGBOOK_DIR='" + folder.path().string() + "' timeout 30 " TQZEL_LIMITED TQZEL_TOOL " " +
                         arguments + " </dev/null");
        EXPECT_THAT(outcome.exitCode, AnyOf(0, 1)) << arguments;
        EXPECT_THAT(outcome.errors, Not(HasSubstr("bad_alloc"))) << arguments;
        EXPECT_THAT(outcome.errors, Not(HasSubstr("memory"))) << arguments;
        return outcome;
    }

    void expectRefused(const std::string& arguments, const std::string& reason) const {
        const support::Outcome outcome = limited(arguments);
        EXPECT_EQ(outcome.exitCode, 1) << arguments;
        EXPECT_EQ(linesOf(outcome.errors), 1) << outcome.errors;
        EXPECT_THAT(outcome.output + outcome.errors, HasSubstr(reason)) << arguments;
    }

    void expectAllRefused(const std::string& reason) const {
        for (const auto* const commands : {&readingCommands, &writingCommands}) {
            for (const std::string& arguments : *commands) {
                expectRefused(arguments, reason);
            }
        }
    }

    static std::ptrdiff_t linesOf(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

    const support::TemporaryFolder elsewhere;
};

/// What stands in the place of a logbook's file.
struct Oddity {
    const char* name;
    bool takesRoot;
    void (*make)(const fs::path& file, const fs::path& elsewhere);
};

void makeLink(const fs::path& file, const fs::path& elsewhere) {
    fs::create_symlink(elsewhere / "precious", file);
}

void makeLinkToNothing(const fs::path& file, const fs::path& elsewhere) {
    fs::create_symlink(elsewhere / "made", file);
}

void makePipe(const fs::path& file, const fs::path&) {
    EXPECT_EQ(mkfifo(file.c_str(), 0666), 0);
}

void makeSocket(const fs::path& file, const fs::path&) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    file.string().copy(address.sun_path, sizeof address.sun_path - 1);
    const int made = socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << file;
    close(made);
}

/// An endless one.
void makeDevice(const fs::path& file, const fs::path&) {
    EXPECT_EQ(mknod(file.c_str(), S_IFCHR | 0666, makedev(1, 5)), 0) << file;
}

void makeFolder(const fs::path& file, const fs::path&) {
    fs::create_directory(file);
    support::write(file / "in it", "something");
}

class OddFile : public PreparedFolder, public testing::WithParamInterface<Oddity> {
protected:
    void SetUp() override {
        if (GetParam().takesRoot && geteuid() != 0) {
            GTEST_SKIP() << "only root makes this";
        }
    }
};

TEST_P(OddFile, IsRefusedByNameAndLeadsNowhere) {
    storeEvening();
    fs::copy_file(customerFile(), elsewhere / "precious");
    const auto before = support::filesOf(elsewhere.path());
    for (const char* const end : {"", "-wal", "-shm", "-journal"}) {
        const fs::path odd = customerFile().string() + end;
        fs::remove(odd);
        GetParam().make(odd, elsewhere.path());
        expectAllRefused(odd.string() + ": is no regular file\n");
        fs::remove_all(odd);
        fs::remove(customerFile());
        storeEvening();
    }
    EXPECT_EQ(support::filesOf(elsewhere.path()), before);
}

TEST_P(OddFile, ThatOnlyWritersUseIsRefusedToThem) {
    for (const char* const end : {"-lock", "-healed"}) {
        storeEvening();
        const fs::path odd = customerFile().string() + end;
        fs::remove(odd);
        GetParam().make(odd, elsewhere.path());
        for (const std::string& arguments : writingCommands) {
            expectRefused(arguments, odd.string() + ": is no regular file\n");
        }
        fs::remove_all(odd);
    }
    EXPECT_TRUE(fs::is_empty(elsewhere.path()));
}

INSTANTIATE_TEST_SUITE_P(PreparedFolder, OddFile,
                         testing::Values(Oddity{"ALink", false, makeLink},
                                         Oddity{"ALinkToNothing", false, makeLinkToNothing},
                                         Oddity{"APipe", false, makePipe}, Oddity{"ASocket", false, makeSocket},
                                         Oddity{"ADevice", true, makeDevice}, Oddity{"AFolder", false, makeFolder}),
                         [](const auto& oddity) { return oddity.param.name; });

TEST_F(PreparedFolder, WithAJournalThatNamesAFileLeavesItThere) {
    storeEvening();
    const fs::path precious = elsewhere / "precious";
    support::write(precious, "precious");
    const fs::path journal = customerFile().string() + "-journal";
    support::write(journal, support::journalNaming(precious.string()));
    expectAllRefused(journal.string() + ": stands beside a logbook, but is none of its files\n");
    EXPECT_EQ(support::contentOf(precious), "precious");
}

TEST_F(PreparedFolder, IsTheOneThatItsNameSaysToReadersAndWriters) {
    for (const std::string name : {"file::memory:?a=", "a?mode=memory", "a%41", "a#b", "-a", "a b"}) {
        fs::create_directory(folder / name);
        const std::string fromBeside = "cd '" + folder.path().string() + "' && " TQZEL_TOOL " --folder='" + name + "' ";
        const std::string byPath = " --folder='" + (folder / name).string() + '\'';
        EXPECT_EQ(support::run(fromBeside + "add service info --text first").exitCode, 0) << name;
        EXPECT_THAT(output("show service" + byPath), HasSubstr("first"));
        EXPECT_EQ(output("add service info --text second" + byPath), "");
        EXPECT_THAT(support::run(fromBeside + "show service").output, HasSubstr("second")) << name;
    }
}

TEST_F(PreparedFolder, ThatMayNotBeEnteredIsNamedInAPlainSentence) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root becomes somebody else";
    }
    storeEvening();
    chmod(folder.path().c_str(), 0700);
    const std::string bySomebody = "setpriv --reuid=65533 --regid=65533 --clear-groups env ";
    for (const auto* const commands : {&readingCommands, &writingCommands}) {
        for (const std::string& arguments : *commands) {
            const support::Outcome outcome = support::run(bySomebody + command(arguments) + " </dev/null");
            EXPECT_EQ(outcome.exitCode, 1) << arguments;
            EXPECT_THAT(outcome.output + outcome.errors,
                        AllOf(HasSubstr(folder.path().string() + "/lgbCustomer.db"), HasSubstr(": Permission denied\n"),
                              Not(HasSubstr("filesystem error"))))
                << arguments;
        }
    }
}

/// The files of a logbook of which something can't be: a view, a trigger, a column or a number too many, and the like.
class PreparedFiles : public PreparedFolder {
protected:
    /// @param input of the fuzzing
    void prepare(const fs::path& input) const {
        for (const auto& entry : fs::directory_iterator(folder.path())) {
            fs::remove(entry.path());
        }
        support::writePreparedFiles(customerFile(), support::contentOf(input));
    }

    std::vector<fs::path> inputs() const {
        std::vector<fs::path> found;
        for (const auto& entry : fs::directory_iterator(TQZEL_SOURCE_FOLDER "/fuzz/corpus/logbook_file")) {
            found.push_back(entry.path());
        }
        return found;
    }
};

TEST_F(PreparedFiles, AreReadOrRefusedInOneLineAndLeftAsTheyAre) {
    for (const fs::path& input : inputs()) {
        prepare(input);
        const auto before = files();
        for (const std::string& arguments : readingCommands) {
            const support::Outcome outcome = limited(arguments);
            EXPECT_THAT(linesOf(outcome.errors), AllOf(Ge(outcome.exitCode), Le(1)))
                << input << ' ' << arguments << '\n'
                << outcome.errors;
        }
        EXPECT_EQ(files(), before) << input;
    }
}

/// Two and a half million columns, for which SQLite would take more memory than there is.
TEST_F(PreparedFiles, OfManyTablesTakeLittleMemory) {
    storeEvening();
    {
        SQLite::Database prepared(customerFile(), SQLite::OPEN_READWRITE);
        prepared.exec("PRAGMA writable_schema = ON; BEGIN");
        std::string columns = "a";
        for (int column = 1; column < 1900; ++column) {
            columns += ",a" + std::to_string(column);
        }
        SQLite::Statement add(prepared, "INSERT INTO sqlite_master VALUES ('table', ?1, ?1, 2, ?2)");
        for (int table = 0; table < 1300; ++table) {
            add.bind(1, fmt::format("t{}", table));
            add.bind(2, fmt::format("CREATE TABLE t{} ({})", table, columns));
            add.exec();
            add.reset();
        }
        prepared.exec("COMMIT");
    }
    for (const std::string& arguments : readingCommands) {
        expectRefused(arguments, "its tables are not those of a logbook");
    }
}

TEST_F(PreparedFiles, AreWrittenToSoundlyOrRefused) {
    for (const fs::path& input : inputs()) {
        for (const std::string& arguments : writingCommands) {
            prepare(input);
            const support::Outcome outcome = limited(arguments);
            if (outcome.exitCode == 0) {
                EXPECT_THAT(limited("check customer").output, HasSubstr(": sound, ")) << input << ' ' << arguments;
            }
        }
    }
}

}  // namespace
