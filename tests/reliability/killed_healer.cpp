// A process is killed before each of its system calls, and in the middle of each write: while it makes a logbook, opens
// it, adds, closes it, and while it heals one that is damaged in one way or another. So may be whoever comes next. Then
// another process opens the logbook: it holds what an undisturbed process would have found, and all that was
// acknowledged; recording goes on, and nothing of the killed ones stays in the folder. In the same way one process is
// stopped while another comes, and killed while that waits.

#include "CapturedErrors.h"
#include "Check.h"
#include "TemporaryFolder.h"
#include "insteadOf.h"
#include "numbersOf.h"
#include "random.h"

#include <standalone/SqliteDatabaseFactory.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <system_error>
#include <vector>

namespace {

using support::Random;
using Texts = std::vector<std::string>;
using Folder = std::map<std::string, std::string>;  // contents of its files by name

constexpr const char* name = "lgbCustomer";
constexpr std::uint64_t usualRounds = 60;  // kills in a row, and meetings, for each way to begin
constexpr std::uint64_t usualEvery = 12;

// ---- the moment of death
// ---------------------------------------------------------------------------------------------

/// The call before which this process ends, counted from 1; 0: none.
std::uint64_t lastCall = 0;
std::uint64_t calls = 0;
int lastSignal = SIGKILL;

/// Whether it is time to die.
bool isLast() {
    return lastCall != 0 && ++calls == lastCall;
}

void dieIfLast() {
    if (isLast()) {
        raise(lastSignal);
    }
}

// ---- logbooks
// --------------------------------------------------------------------------------------------------------

std::unique_ptr<lgb::IDatabase> open(const std::filesystem::path& folder, std::uint32_t capacity) {
    return standalone::SqliteDatabaseFactory(folder).create(name, 0, capacity);
}

Texts textsOf(lgb::IDatabase& database) {
    Texts texts;
    for (const lgb::DatabaseRecord& record : database.fetch(0, 1000)) {
        texts.push_back(record.json);
    }
    return texts;
}

void addRecords(lgb::IDatabase& database, int first, int last) {
    for (int number = first; number <= last; ++number) {
        const std::size_t length = number % 8 == 3 ? 3000 : 40;
        database.add(
            "record " + std::to_string(number) + ' ' + std::string(length, static_cast<char>('a' + number % 26)),
            {number, number, "18:00"});
    }
}

/// Does something in a process of its own.
/// @return what waitpid tells of its end
template <typename Work>
pid_t start(Work work) {
    const pid_t child = fork();
    if (child == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child == 0) {
        constexpr unsigned int longest = 30;  // seconds
        alarm(longest);
        try {
            work();
        } catch (const std::exception& exception) {
            std::cerr << exception.what() << '\n';
            _exit(1);
        }
        _exit(0);
    }
    return child;
}

int endOf(pid_t child) {
    int status = 0;
    if (waitpid(child, &status, 0) != child) {
        throw std::system_error(errno, std::generic_category(), "waitpid");
    }
    return status;
}

// ---- how a folder may look when a process comes
// ----------------------------------------------------------------------

std::string& databaseIn(Folder& folder) {
    return folder["lgbCustomer.db"];
}

std::string& logIn(Folder& folder) {
    return folder["lgbCustomer.db-wal"];
}

/// As a closed logbook leaves it.
Folder closed(std::uint32_t capacity, int records) {
    const support::TemporaryFolder folder;
    addRecords(*open(folder.path(), capacity), 1, records);
    return support::filesOf(folder.path());
}

/// As a killed writer leaves it, with its last records in the log alone.
Folder killed(std::uint32_t capacity, int records, int recordsInLog) {
    const support::TemporaryFolder folder;
    addRecords(*open(folder.path(), capacity), 1, records);
    endOf(start([&] {
        const auto database = open(folder.path(), capacity);
        addRecords(*database, records + 1, records + recordsInLog);
        _exit(0);
    }));
    return support::filesOf(folder.path());
}

constexpr std::size_t pageBytes = 1024;
constexpr std::size_t frameBytes = 24 + pageBytes;

void losePage(Folder& folder, std::size_t page) {
    databaseIn(folder).replace((page - 1) * pageBytes, pageBytes, pageBytes, '\0');
}

void flipByte(std::string& file, std::size_t at) {
    file.at(at) = static_cast<char>(file.at(at) ^ 0x10);
}

/// Where the newest frame of a log begins: those behind it are left from before the log began anew.
std::size_t lastFrame(const std::string& log) {
    constexpr std::size_t headerBytes = 32;
    constexpr std::size_t saltsAt = 16;
    std::size_t at = headerBytes;
    while (log.compare(at + frameBytes + 8, 8, log, saltsAt, 8) == 0) {
        at += frameBytes;
    }
    return at;
}

struct Scene {
    const char* title;
    std::uint32_t capacity;
    std::size_t records;  ///< that an undisturbed process finds, at least
    Folder (*begin)();
};

constexpr std::array<Scene, 19> scenes = {{
    {"nothing", 20, 0, [] { return Folder(); }},
    {"a whole logbook", 20, 20, [] { return closed(20, 50); }},
    {"a logbook that is to grow", 600, 20, [] { return closed(20, 50); }},
    {"a log left by a killed writer", 20, 20, [] { return killed(20, 45, 9); }},
    {"a page of records lost", 20, 20,
     [] {
         Folder folder = closed(20, 50);
         losePage(folder, 7);
         return folder;
     }},
    {"the root of records lost", 40, 40,
     [] {
         Folder folder = closed(40, 70);
         losePage(folder, 4);
         return folder;
     }},
    {"the header lost", 20, 20,
     [] {
         Folder folder = closed(20, 50);
         losePage(folder, 1);
         return folder;
     }},
    {"a record changed", 40, 40,
     [] {
         Folder folder = closed(40, 60);
         flipByte(databaseIn(folder), databaseIn(folder).find("record 55") + 12);
         return folder;
     }},
    {"a record changed, newer ones in the log", 40, 40,
     [] {
         Folder folder = killed(40, 60, 6);
         flipByte(databaseIn(folder), databaseIn(folder).find("record 50") + 12);
         return folder;
     }},
    {"a short database", 20, 17,
     [] {
         Folder folder = closed(20, 50);
         databaseIn(folder).resize(6 * pageBytes + 100);
         return folder;
     }},
    {"an empty database", 20, 20,
     [] {
         Folder folder = closed(20, 50);
         databaseIn(folder).clear();
         return folder;
     }},
    {"a damaged log", 20, 20,
     [] {
         Folder folder = killed(20, 45, 9);
         flipByte(logIn(folder), 32 + 5 * frameBytes + 600);
         return folder;
     }},
    {"a log damaged near its end", 20, 20,
     [] {
         Folder folder = killed(20, 45, 9);
         flipByte(logIn(folder), lastFrame(logIn(folder)) - frameBytes + 300);
         return folder;
     }},
    {"a log whose last commit is damaged", 20, 20,
     [] {
         Folder folder = killed(20, 45, 9);
         flipByte(logIn(folder), lastFrame(logIn(folder)) + 9);
         return folder;
     }},
    {"a damaged log and a page lost", 20, 20,
     [] {
         Folder folder = killed(20, 45, 9);
         flipByte(logIn(folder), 32 + 2 * frameBytes + 600);
         losePage(folder, 6);
         return folder;
     }},
    {"the log of another logbook", 20, 20,
     [] {
         Folder folder = closed(20, 50);
         Folder other = killed(20, 10, 5);
         logIn(folder) = logIn(other);
         return folder;
     }},
    {"a log without its database", 20, 0,
     [] {
         Folder folder = killed(20, 45, 9);
         folder.erase("lgbCustomer.db");
         return folder;
     }},
    {"an older database", 20, 20,
     [] {
         Folder folder = closed(20, 50);
         const support::TemporaryFolder later;
         support::write(later / "lgbCustomer.db", databaseIn(folder));
         addRecords(*open(later.path(), 20), 51, 55);
         logIn(folder) = support::contentOf(later / "lgbCustomer.db-wal");
         return folder;
     }},
    {"a page lost for the third time", 300, 290,
     [] {
         Folder folder = closed(300, 320);
         losePage(folder, 20);
         folder["lgbCustomer.damaged-1.db"] = "one";
         folder["lgbCustomer.damaged-1.db-wal"] = "its log";
         folder["lgbCustomer.damaged-2.db"] = "another";
         return folder;
     }},
}};

// ---- what must come of it
// --------------------------------------------------------------------------------------------

/// What those who are killed have been told to be stored.
struct Shared {
    std::array<bool, 8> acknowledged{};
    std::uint64_t calls = 0;  // of who was not killed
};

Shared& shareMemory() {
    void* const memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::system_error(errno, std::generic_category(), "mmap");
    }
    return *new (memory) Shared;
}

struct Figures {
    std::uint64_t kills = 0;
    std::uint64_t inARow = 0;
    std::uint64_t meetings = 0;
    std::uint64_t lost = 0;
    std::uint64_t strange = 0;
    std::uint64_t refused = 0;
    std::uint64_t leftBehind = 0;
};

std::string addedText(std::size_t who) {
    return "added by " + std::to_string(who);
}

/// A scene that is begun again and again.
class Stage {
public:
    Stage(const Scene& ofThis, bool acknowledgesEarly, Shared& told, Figures& all)
        : scene(ofThis), lies(acknowledgesEarly), shared(told), figures(all), begin(scene.begin()) {
        reset();
        undisturbed = textsOf(*open(place(), scene.capacity));
        open(place(), scene.capacity)->add("the next one", {});
        nextNumber = support::numbersOf(place() / "lgbCustomer.db").newest;
    }

    std::string title() const { return scene.title; }

    std::size_t recordsFound() const { return undisturbed.size(); }

    void reset() {
        std::filesystem::remove_all(folder / "logbooks");
        shared.acknowledged = {};
        if (!begin.empty()) {
            std::filesystem::create_directory(folder / "logbooks");
        }
        for (const auto& [file, content] : begin) {
            support::write(place() / file, content);
        }
    }

    /// Opens, adds and closes, up to a call of the system.
    /// @param last that call, 0: to the end
    pid_t startUpTo(std::uint64_t last, std::size_t who, int signal = SIGKILL) {
        return start([&] {
            lastSignal = signal;
            calls = 0;
            lastCall = last == 0 ? UINT64_MAX : last;
            shared.acknowledged[who] = lies;
            {
                const auto database = open(place(), scene.capacity);
                database->add(addedText(who), {});
                shared.acknowledged[who] = true;
            }
            shared.calls = calls;
            lastCall = 0;
        });
    }

    /// How many calls one makes who is not killed.
    std::uint64_t callsInAll() {
        reset();
        if (endOf(startUpTo(0, 0)) != 0) {
            ++figures.refused;
        }
        return shared.calls;
    }

    /// Looks at what the others left.
    void look(const std::string& what, support::Failures& failures) {
        const std::string where = std::string(scene.title) + ", " + what + ": ";
        try {
            const auto database = open(place(), scene.capacity);
            judge(textsOf(*database), where, failures);
            database->add("afterwards", {});
            const bool goesOn = textsOf(*database).front() == "afterwards";
            failures.expect(goesOn, where + "recording does not go on");
            figures.lost += goesOn ? 0U : 1U;
        } catch (const std::exception& exception) {
            ++figures.refused;
            failures.expect(false, where + exception.what());
            return;
        }
        const support::Numbers numbers = support::numbersOf(place() / "lgbCustomer.db");
        failures.expect(numbers.areWithoutGaps, where + "numbers have gaps");
        failures.expect(numbers.newest >= nextNumber, where + "a number was given out twice");
        judgeFolder(where, failures);
    }

private:
    std::filesystem::path place() const { return folder / "logbooks"; }

    /// In front of what an undisturbed process found stands what was acknowledged, and may stand what was not.
    void judge(const Texts& found, const std::string& where, support::Failures& failures) {
        std::size_t at = 0;
        for (std::size_t who = shared.acknowledged.size(); who-- > 0;) {
            const bool isThere = at < found.size() && found[at] == addedText(who);
            at += isThere ? 1U : 0U;
            if (shared.acknowledged[who] && !isThere) {
                ++figures.lost;
                failures.expect(false, "acknowledged records were lost: " + where);
            }
        }
        const std::size_t room = scene.capacity - at;
        const Texts expected(undisturbed.begin(),
                             undisturbed.begin() + static_cast<std::ptrdiff_t>(std::min(room, undisturbed.size())));
        const Texts older(found.begin() + static_cast<std::ptrdiff_t>(at), found.end());
        if (older != expected) {
            const bool isLess = std::includes(expected.begin(), expected.end(), older.begin(), older.end());
            ++(isLess ? figures.lost : figures.strange);
            failures.expect(
                false, where + std::to_string(older.size()) + " records instead of " + std::to_string(expected.size()));
        }
    }

    void judgeFolder(const std::string& where, support::Failures& failures) {
        std::set<std::string> sets;
        std::string others;
        for (const auto& [file, content] : support::filesOf(place())) {
            const std::size_t end = file.find(".db");
            if (file.find(".damaged-") != std::string::npos) {
                sets.insert(file.substr(0, end));
            } else if (file.find("-making") != std::string::npos || file.find("-healed") != std::string::npos) {
                others += ' ' + file;
            }
        }
        constexpr std::size_t mostSets = 2;
        const bool isTidy = sets.size() <= mostSets && others.empty();
        figures.leftBehind += isTidy ? 0U : 1U;
        failures.expect(isTidy, where + std::to_string(sets.size()) + " sets of damaged files are left, and" + others);
    }

    const Scene& scene;
    bool lies;
    Shared& shared;
    Figures& figures;
    Folder begin;
    Texts undisturbed;
    std::int64_t nextNumber = 0;
    support::TemporaryFolder folder;
};

// ---- kills
// -----------------------------------------------------------------------------------------------------------

void killAtEachCall(Stage& stage, std::uint64_t every, Random& random, Figures& figures, support::Failures& failures) {
    const std::uint64_t all = stage.callsInAll();
    for (auto last = static_cast<std::uint64_t>(support::upTo(random, static_cast<std::int64_t>(every) - 1)) + 1;
         last <= all; last += every) {
        stage.reset();
        const bool isKilled = WIFSIGNALED(endOf(stage.startUpTo(last, 0)));
        figures.kills += isKilled ? 1U : 0U;
        stage.look("killed before call " + std::to_string(last) + " of " + std::to_string(all), failures);
    }
}

void killInARow(Stage& stage, std::uint64_t rounds, Random& random, Figures& figures, support::Failures& failures) {
    const auto all = static_cast<std::int64_t>(stage.callsInAll());
    for (std::uint64_t round = 0; round < rounds; ++round) {
        stage.reset();
        std::string what = "killed in a row before calls";
        const auto depth = static_cast<std::size_t>(2 + support::upTo(random, 4));
        for (std::size_t who = 0; who < depth; ++who) {
            const auto last = static_cast<std::uint64_t>(1 + support::upTo(random, all));
            const bool isKilled = WIFSIGNALED(endOf(stage.startUpTo(last, who)));
            figures.kills += isKilled ? 1U : 0U;
            figures.inARow += isKilled ? 1U : 0U;
            what += ' ' + std::to_string(last);
        }
        stage.look(what, failures);
    }
}

/// One is stopped, another comes, and the first is killed while that may wait for it.
void killWhoIsWaitedFor(Stage& stage, std::uint64_t rounds, Random& random, Figures& figures,
                        support::Failures& failures) {
    const auto all = static_cast<std::int64_t>(stage.callsInAll());
    for (std::uint64_t round = 0; round < rounds; ++round) {
        stage.reset();
        const auto last = static_cast<std::uint64_t>(1 + support::upTo(random, all - 1));
        const pid_t first = stage.startUpTo(last, 0, SIGSTOP);
        int status = 0;
        waitpid(first, &status, WUNTRACED);
        const pid_t second = stage.startUpTo(0, 1);
        usleep(static_cast<useconds_t>(support::upTo(random, 4000)));
        if (WIFSTOPPED(status)) {
            kill(first, SIGKILL);
            endOf(first);
            ++figures.kills;
            ++figures.meetings;
        }
        const bool goesOn = endOf(second) == 0;
        figures.refused += goesOn ? 0U : 1U;
        const std::string what = "met by another, and killed before call " + std::to_string(last);
        failures.expect(goesOn, stage.title() + ", " + what + ": the other does not go on");
        stage.look(what, failures);
    }
}

int run(int argc, char** argv) {
    std::uint64_t every = usualEvery;
    bool lies = false;
    const support::Extent extent =
        support::extentOf(argc, argv, usualRounds,
                          {{"--every", &every, "be killed only before each n-th call"},
                           {"--lie", &lies, "acknowledge records before they are added: must be found out"}});
    Random random(extent.seed);
    Shared& shared = shareMemory();
    Figures figures;
    support::Failures failures;
    {
        support::CapturedErrors errors;
        for (const Scene& scene : scenes) {
            Stage stage(scene, lies, shared, figures);
            failures.expect(stage.recordsFound() >= scene.records,
                            stage.title() + ": undisturbed, " + std::to_string(stage.recordsFound()) + " records");
            killAtEachCall(stage, every, random, figures, failures);
            killInARow(stage, extent.rounds / 10, random, figures, failures);
            killWhoIsWaitedFor(stage, extent.rounds / 20, random, figures, failures);
            errors.take();
        }
    }
    failures.expect(figures.kills > 0 && figures.inARow > 0 && figures.meetings > 0, "too few kills to tell");
    const auto number = [](std::uint64_t value) { return std::to_string(value); };
    return failures.conclude("killed healer: " + number(figures.kills) + " kills, " + number(figures.inARow) +
                             " of them in a row, " + number(figures.meetings) + " while another waited, " +
                             number(figures.lost) + " lost, " + number(figures.strange) + " with other records, " +
                             number(figures.leftBehind) + " with files left behind, " + number(figures.refused) +
                             " can't record");
}

template <typename Result, typename... Arguments>
Result callOrDie(const char* function, Arguments... arguments) {
    dieIfLast();
    return support::callBehind<Result>(function, arguments...);
}

/// A write that death may cut.
template <typename... Offset>
ssize_t writeOrDie(const char* function, int file, const void* bytes, std::size_t count, Offset... offset) {
    dieIfLast();
    if (isLast()) {
        support::callBehind<ssize_t>(function, file, bytes, count / 2, offset...);
        raise(lastSignal);
    }
    return support::callBehind<ssize_t>(function, file, bytes, count, offset...);
}

}  // namespace

// In front of the C library's, for SQLite too.
#pragma GCC visibility push(default)

extern "C" {

int openFile(const char* file, int flags, mode_t mode) TQZEL_INSTEAD_OF(open);
int openFile64(const char* file, int flags, mode_t mode) TQZEL_INSTEAD_OF(open64);
int closeFile(int file) TQZEL_INSTEAD_OF(close);
ssize_t writeNext(int file, const void* bytes, std::size_t count) TQZEL_INSTEAD_OF(write);
ssize_t writeAt(int file, const void* bytes, std::size_t count, long offset) TQZEL_INSTEAD_OF(pwrite);
ssize_t writeAt64(int file, const void* bytes, std::size_t count, std::int64_t offset) TQZEL_INSTEAD_OF(pwrite64);
int cutFile(int file, long bytes) TQZEL_INSTEAD_OF(ftruncate);
int cutFile64(int file, std::int64_t bytes) TQZEL_INSTEAD_OF(ftruncate64);
int allotTo(int file, int mode, long offset, long bytes) TQZEL_INSTEAD_OF(fallocate);
int allotTo64(int file, int mode, std::int64_t offset, std::int64_t bytes) TQZEL_INSTEAD_OF(fallocate64);
int syncFile(int file) TQZEL_INSTEAD_OF(fsync);
int syncData(int file) TQZEL_INSTEAD_OF(fdatasync);
int unlinkFile(const char* file) TQZEL_INSTEAD_OF(unlink);
int renameTo(const char* from, const char* to) TQZEL_INSTEAD_OF(rename);
int renameTo2(int oldFolder, const char* from, int newFolder, const char* to, unsigned int flags)
    TQZEL_INSTEAD_OF(renameat2);
int makeFolder(const char* folder, mode_t mode) TQZEL_INSTEAD_OF(mkdir);
int lockFile(int file, int operation) TQZEL_INSTEAD_OF(flock);
int control(int file, int command, void* argument) TQZEL_INSTEAD_OF(fcntl);
int control64(int file, int command, void* argument) TQZEL_INSTEAD_OF(fcntl64);

int openFile(const char* file, int flags, mode_t mode) {
    return callOrDie<int>("open", file, flags, mode);
}

int openFile64(const char* file, int flags, mode_t mode) {
    return callOrDie<int>("open64", file, flags, mode);
}

int closeFile(int file) {
    return callOrDie<int>("close", file);
}

ssize_t writeNext(int file, const void* bytes, std::size_t count) {
    return writeOrDie("write", file, bytes, count);
}

ssize_t writeAt(int file, const void* bytes, std::size_t count, long offset) {
    return writeOrDie("pwrite", file, bytes, count, offset);
}

ssize_t writeAt64(int file, const void* bytes, std::size_t count, std::int64_t offset) {
    return writeOrDie("pwrite64", file, bytes, count, offset);
}

int cutFile(int file, long bytes) {
    return callOrDie<int>("ftruncate", file, bytes);
}

int cutFile64(int file, std::int64_t bytes) {
    return callOrDie<int>("ftruncate64", file, bytes);
}

int allotTo(int file, int mode, long offset, long bytes) {
    return callOrDie<int>("fallocate", file, mode, offset, bytes);
}

int allotTo64(int file, int mode, std::int64_t offset, std::int64_t bytes) {
    return callOrDie<int>("fallocate64", file, mode, offset, bytes);
}

int syncFile(int file) {
    return callOrDie<int>("fsync", file);
}

int syncData(int file) {
    return callOrDie<int>("fdatasync", file);
}

int unlinkFile(const char* file) {
    return callOrDie<int>("unlink", file);
}

int renameTo(const char* from, const char* to) {
    return callOrDie<int>("rename", from, to);
}

int renameTo2(int oldFolder, const char* from, int newFolder, const char* to, unsigned int flags) {
    return callOrDie<int>("renameat2", oldFolder, from, newFolder, to, flags);
}

int makeFolder(const char* folder, mode_t mode) {
    return callOrDie<int>("mkdir", folder, mode);
}

int lockFile(int file, int operation) {
    return callOrDie<int>("flock", file, operation);
}

int control(int file, int command, void* argument) {
    return callOrDie<int>("fcntl", file, command, argument);
}

int control64(int file, int command, void* argument) {
    return callOrDie<int>("fcntl64", file, command, argument);
}

}  // extern "C"

#pragma GCC visibility pop

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
