// The disk is full, and stays full: logbooks of any capacity go on recording entries of any size, with nothing failing,
// also when cleared, closed and opened again, and while our own readers look on. What can't be opened for want of space
// is refused at once. Give it a folder on a small file system of its own with --folder; without one there is no disk to
// fill, and it makes sure only that the session itself holds.

#include "CapturedErrors.h"
#include "Check.h"
#include "Companion.h"
#include "TemporaryFolder.h"
#include "lines.h"
#include "tool.h"

#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>
#include <lgb/LogbookFactory.h>
#include <lgb/params.h>
#include <standalone/LogbookReader.h>
#include <standalone/SqliteDatabaseFactory.h>
#include <standalone/errors.h>

#include <SQLiteCpp/Database.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using lgb::code::Code;
using standalone::Failure;
using tqbase2::nsa::zel::enums::LogbookEntryType;
using tqbase2::nsa::zel::logbook::Entry;
using namespace std::chrono_literals;

/// A small disk that gets filled; without one nothing is.
class Disk {
public:
    explicit Disk(const std::string& itsFolder) : folder(itsFolder) {}

    explicit operator bool() const { return !folder.empty(); }

    std::filesystem::path path() const { return folder; }

    /// Takes every byte that is left; those that others freed in the meantime as well.
    void fill() const {
        if (folder.empty()) {
            return;
        }
        const int descriptor = open(filler().c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        const std::array<char, 4096> block{};
        while (write(descriptor, block.data(), block.size()) > 0) {
        }
        while (write(descriptor, block.data(), 1) > 0) {
        }
        fsync(descriptor);
        close(descriptor);
    }

    /// Leaves that much.
    void leave(std::uintmax_t bytes) const {
        fill();
        std::filesystem::resize_file(filler(), std::filesystem::file_size(filler()) - bytes);
        const int descriptor = open(filler().c_str(), O_RDONLY);
        syncfs(descriptor);  // some give blocks to others only then
        close(descriptor);
    }

    void free() const {
        if (!folder.empty()) {
            std::filesystem::remove(filler());
        }
    }

private:
    std::filesystem::path filler() const { return folder / "filler"; }

    std::filesystem::path folder;
};

/// How long entries are.
enum class Sizes { Usual, Mixed };

std::size_t lengthOf(std::uint64_t number, Sizes sizes) {
    if (sizes == Sizes::Usual) {
        return 24;
    }
    return number % 50 == 0 ? 8000 : number % 4 == 0 ? 2000 : 24;
}

Entry entryOf(std::uint64_t number, Sizes sizes) {
    const std::string service(lengthOf(number, sizes), static_cast<char>('a' + number % 26));
    const auto bus = static_cast<unsigned int>(number);
    const lgb::Entry event(Code(14, LogbookEntryType::Error), lgb::params::createBusModuleAndService(bus, 3, service));
    return lgb::LogbookEntryCreator::create(event);
}

/// What was asked of logbooks, and how often it failed.
struct Tally {
    std::uint64_t operations = 0;
    support::Failures failures;
};

/// One logbook, and what must be in it.
class Session {
public:
    Session(std::filesystem::path itsFolder, const char* itsName, std::uint32_t capacity, Sizes itsSizes,
            Tally& itsTally)
        : folder(std::move(itsFolder)), name(itsName), most(capacity), sizes(itsSizes), tally(itsTally) {}

    void open() {
        attempt("open", [&] { openOrThrow(); });
    }

    void openOrThrow() {
        database = standalone::SqliteDatabaseFactory(folder).create(name, 0, most);
        logbook = lgb::LogbookFactory().create(*database, true);
    }

    void close() {
        logbook.reset();
        database.reset();
    }

    void add() {
        attempt("add", [&] { addOrThrow(); });
    }

    void addOrThrow() {
        inUse().add(entryOf(added + 1, sizes));
        ++added;
    }

    void clear() {
        attempt("clear", [&] {
            inUse().clear();
            cleared = added;
        });
    }

    /// Adds, clears and opens anew.
    void work(std::uint64_t operations, const Disk& disk) {
        for (std::uint64_t i = 1; i <= operations; ++i) {
            if (i % 397 == 0) {
                clear();
            } else if (i % 101 == 0) {
                close();
                disk.fill();
                open();
            } else {
                add();
            }
            if (i % 97 == 0) {
                disk.fill();
                expectNewest();
            }
        }
        expectNewest();
    }

    /// What is kept ends with what was added last, and nothing is missing in between.
    void expectNewest() {
        attempt("fetch", [&] {
            const std::vector<Entry> kept = inUse().fetchAll();
            const std::uint64_t all = added - cleared;
            const std::uint64_t full = most == 0 ? all : std::min<std::uint64_t>(most, all);
            const bool hasSpace = sizes == Sizes::Usual && most > 0;
            const std::uint64_t least = hasSpace ? full : std::min(full, leastKept);
            tally.failures.expect(kept.size() >= least && kept.size() <= full,
                                  where() + std::to_string(kept.size()) + " entries instead of " +
                                      std::to_string(least) + " to " + std::to_string(full));
            std::uint64_t number = added;
            for (const Entry& entry : kept) {
                tally.failures.expect(entry.details.params == entryOf(number, sizes).details.params,
                                      where() + entry.description.substr(0, 80) + " where number " +
                                          std::to_string(number) + " was expected");
                --number;
            }
        });
    }

private:
    static constexpr std::uint64_t leastKept = 10;

    std::string where() const {
        return std::string(name) + ", capacity " + std::to_string(most) +
               (sizes == Sizes::Mixed ? ", mixed: " : ", usual: ");
    }

    lgb::ILogbook& inUse() const {
        if (!logbook) {
            throw std::runtime_error("it is not open");
        }
        return *logbook;
    }

    template <typename Operation>
    void attempt(const std::string& what, Operation operation) {
        ++tally.operations;
        try {
            operation();
        } catch (const std::exception& exception) {
            tally.failures.expect(false, where() + what + ": " + exception.what());
        }
    }

    std::filesystem::path folder;
    const char* name;
    std::uint32_t most;
    Sizes sizes;
    Tally& tally;
    std::uint64_t added = 0;
    std::uint64_t cleared = 0;
    std::unique_ptr<lgb::IDatabase> database;
    std::unique_ptr<lgb::ILogbook> logbook;
};

constexpr std::array<std::uint32_t, 3> capacities = {20, 1000, 0};
constexpr const char* customer = "lgbCustomer";
constexpr const char* service = "lgbService";

/// When a companion begins, and what it has done.
struct Signals {
    std::atomic<bool> begun{false};
    std::atomic<bool> holding{false};
    std::atomic<bool> ended{false};
    std::atomic<std::uint64_t> runs{0};

    void await(const std::atomic<bool>& signal) const {
        while (!signal) {
            usleep(1000);
        }
    }
};

void expectSilence(const support::Outcome& outcome, const std::string& what, support::Failures& failures) {
    failures.expect(outcome.exitCode == 0, what + ": exit code " + std::to_string(outcome.exitCode));
    failures.expect(outcome.errors.empty(), what + ": " + outcome.errors);
}

/// Reads as people do beside a device at work, until that ends.
void lookOn(const std::filesystem::path& folder, Signals& signals, support::Failures& failures) {
    signals.await(signals.begun);
    while (!signals.ended) {
        for (const char* const arguments : {"check", "export customer", "export service"}) {
            expectSilence(support::run(support::toolCommand(folder, arguments)), arguments, failures);
        }
        support::SlowlyRead show(support::toolCommand(folder, "show service --all --format jsonl"));
        const support::Outcome outcome = show.end(2ms);
        failures.expect(outcome.exitCode == 0, "show: " + outcome.output);
        std::vector<std::int64_t> numbers;
        standalone::LogbookReader reader(standalone::logbookFile(folder, customer));
        for (const auto& record : reader.before(std::numeric_limits<std::int64_t>::max(), 50)) {
            numbers.push_back(record.number);
            failures.expect(record.intact, "record " + std::to_string(record.number) + " is not whole");
        }
        failures.expect(support::countDown(numbers), "records are missing in between");
        signals.runs += 5;
    }
}

/// Both logbooks in use on a disk that stays full, with readers beside them.
/// @return how often was read
std::uint64_t record(const std::filesystem::path& folder, const Disk& disk, std::uint32_t capacity, Sizes sizes,
                     std::uint64_t operations, Tally& tally) {
    support::SharedMemory<Signals> signals;
    support::Companion readers([&](support::Failures& failures) { lookOn(folder, *signals, failures); });
    Session both[] = {{folder, customer, capacity, sizes, tally}, {folder, service, capacity, sizes, tally}};
    for (Session& session : both) {
        session.open();
    }
    disk.fill();
    signals->begun = true;
    constexpr std::uint64_t atOnce = 250;
    for (std::uint64_t done = 0; done < operations; done += 2 * atOnce) {
        for (Session& session : both) {
            session.work(atOnce, disk);
        }
    }
    signals->ended = true;
    tally.failures.expect(readers.succeeds(), "readers failed beside " + std::to_string(capacity) + " entries");
    return signals->runs;
}

/// An unlimited logbook fills the disk by itself; then the oldest make room, which is said once.
void outgrow(const std::filesystem::path& folder, const Disk& disk, support::CapturedErrors& errors, Tally& tally) {
    Session session(folder, service, 0, Sizes::Mixed, tally);
    session.open();
    disk.fill();
    errors.take();
    for (int i = 0; i < 1000; ++i) {
        session.add();
    }
    session.expectNewest();
    const std::string said = errors.take();
    const bool isSaidOnce = support::occurrences(said, "\n") == 1 && support::occurrences(said, " warning ") == 1 &&
                            support::occurrences(said, "the oldest records make room") == 1;
    tally.failures.expect(isSaidOnce, "of the full disk was said: " + said);
}

void expectNoOtherWords(const std::string& said, support::Failures& failures) {
    std::istringstream lines(said);
    for (std::string line; std::getline(lines, line);) {
        const bool isOfFullDisk = line.find("the disk is full; the oldest records make room") != std::string::npos ||
                                  line.find("the disk has no space for its log") != std::string::npos;
        failures.expect(isOfFullDisk, line);
    }
}

/// Opened first on a disk with hardly any room: refused, or of use.
/// @return whether it was refused
bool isRefusedWithin(const std::filesystem::path& folder, const Disk& disk, std::uintmax_t bytes,
                     std::uint32_t capacity, Tally& tally) {
    const std::string where = "opened on " + std::to_string(bytes) + " bytes: ";
    disk.leave(bytes);
    Session session(folder, service, capacity, Sizes::Mixed, tally);
    bool isRefused = false;
    for (int tries = 0; tries < 2; ++tries) {
        const auto begin = std::chrono::steady_clock::now();
        try {
            session.openOrThrow();
            break;
        } catch (const standalone::DatabaseError& error) {
            isRefused = true;
            tally.failures.expect(error.kind() == Failure::Full, where + error.what());
            tally.failures.expect(std::chrono::steady_clock::now() - begin < 1s, where + "refused late");
        }
    }
    if (isRefused) {
        disk.free();
        session.open();
    }
    disk.fill();
    session.work(500, disk);
    return isRefused;
}

/// Somebody else reads for long: adding fails while that goes on, and no longer.
/// @return how many milliseconds it took
std::uint64_t addBesideForeignReader(const std::filesystem::path& folder, const Disk& disk, Tally& tally) {
    support::SharedMemory<Signals> signals;
    support::Companion reader([&](support::Failures&) {
        signals->await(signals->begun);
        SQLite::Database connection(standalone::logbookFile(folder, service).string(), SQLite::OPEN_READONLY);
        connection.exec("BEGIN");
        connection.execAndGet("SELECT count(*) FROM record");
        signals->holding = true;
        signals->await(signals->ended);
    });
    Session session(folder, service, 1000, Sizes::Mixed, tally);
    session.open();
    disk.fill();
    session.work(50, disk);
    signals->begun = true;
    signals->await(signals->holding);
    std::optional<Failure> failure;
    auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 10000 && !failure; ++i) {
        begin = std::chrono::steady_clock::now();
        try {
            session.addOrThrow();
        } catch (const standalone::DatabaseError& error) {
            failure = error.kind();
        }
    }
    const auto taken = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
    tally.failures.expect(failure == Failure::Full || failure == Failure::Busy, "a foreign reader was not noticed");
    tally.failures.expect(taken < 7s, "adding beside a foreign reader took " + std::to_string(taken.count()) + " ms");
    signals->ended = true;
    tally.failures.expect(reader.succeeds(), "the foreign reader failed");
    session.work(100, disk);
    return static_cast<std::uint64_t>(taken.count());
}

/// The disk is filled and freed by others all the time.
void workOnUnsteadyDisk(const std::filesystem::path& folder, const Disk& disk, std::uint64_t operations, Tally& tally) {
    support::SharedMemory<Signals> signals;
    support::Companion others([&](support::Failures&) {
        signals->await(signals->begun);
        while (!signals->ended) {
            disk.fill();
            usleep(5000);
            disk.free();
            usleep(5000);
        }
    });
    Session session(folder, service, 0, Sizes::Mixed, tally);
    session.open();
    signals->begun = true;
    session.work(operations, Disk(""));
    signals->ended = true;
    tally.failures.expect(others.succeeds(), "who fills the disk failed");
}

/// Runs a part of the check, and leaves an empty disk to the next one.
template <typename Part>
void onEmptyDisk(const std::filesystem::path& folder, const Disk& disk, Part part) {
    part();
    std::filesystem::remove_all(folder);
    disk.free();
}

/// What happens on a disk alone.
/// @return figures
std::string pressOn(const std::filesystem::path& folder, const Disk& disk, std::uint64_t operations,
                    support::CapturedErrors& errors, Tally& tally) {
    onEmptyDisk(folder, disk, [&] { outgrow(folder, disk, errors, tally); });
    onEmptyDisk(folder, disk, [&] { workOnUnsteadyDisk(folder, disk, operations, tally); });
    std::uint64_t waited = 0;
    onEmptyDisk(folder, disk, [&] { waited = addBesideForeignReader(folder, disk, tally); });
    std::uint64_t openings = 0;
    std::uint64_t refused = 0;
    for (std::uintmax_t kilobytes = 0; kilobytes <= 1024; kilobytes += kilobytes < 128 ? 4 : 64) {
        for (const std::uint32_t capacity : capacities) {
            ++openings;
            onEmptyDisk(folder, disk,
                        [&] { refused += isRefusedWithin(folder, disk, kilobytes * 1024, capacity, tally) ? 1U : 0U; });
        }
    }
    return ", " + std::to_string(waited) + " ms until an add failed beside a foreign reader, " +
           std::to_string(openings) + " openings on little space, " + std::to_string(refused) + " of them refused";
}

int run(int argc, char** argv) {
    std::string given;
    const support::Extent extent =
        support::extentOf(argc, argv, 1200, {{"--folder", &given, "on a small file system of its own"}});

    constexpr std::uintmax_t small = std::uintmax_t{64} << 20;  // 64 MB
    if (!given.empty() && std::filesystem::space(given).capacity > small) {
        std::cerr << given << ": not on a small file system of its own, and I would fill it\n";
        return 2;
    }

    const support::TemporaryFolder temporary;
    const Disk disk(given);
    const std::filesystem::path folder = (disk ? disk.path() : temporary.path()) / "logbooks";
    const std::uint64_t part = extent.rounds / (2 * capacities.size());
    support::CapturedErrors errors;  // where each opening says that the disk is full
    Tally tally;
    std::uint64_t reads = 0;
    for (const std::uint32_t capacity : capacities) {
        for (const Sizes sizes : {Sizes::Usual, Sizes::Mixed}) {
            onEmptyDisk(folder, disk, [&] { reads += record(folder, disk, capacity, sizes, part, tally); });
        }
    }
    const std::string further = disk ? pressOn(folder, disk, part, errors, tally) : "";
    expectNoOtherWords(errors.take(), tally.failures);
    return tally.failures.conclude("full disk: " + std::to_string(tally.operations) + " operations beside " +
                                   std::to_string(reads) + " reads" + further);
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
