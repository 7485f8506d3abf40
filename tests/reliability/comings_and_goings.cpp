// One process adds without pause while others open the same logbook, add a record and close it again, which empties the
// log. Nobody may write where another has written meanwhile: each record that was acknowledged must be there for
// whoever opens the logbook next. With --delay every write of one byte takes its time, so that writes which hold no
// lock meet those of others.

#include "Check.h"
#include "NumberedLogbook.h"
#include "TemporaryFolder.h"
#include "insteadOf.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <iostream>
#include <map>
#include <new>
#include <string>
#include <system_error>
#include <vector>

namespace {

using support::Entry;

constexpr std::uint32_t capacity = 2000;
constexpr std::uint64_t usualSeconds = 5;

/// What all processes know of one another.
struct Shared {
    std::atomic<bool> done{false};
    std::atomic<std::uint64_t> adds{0};      // of the busy one, acknowledged
    std::atomic<std::uint64_t> openings{0};  // of the others, each with one record, acknowledged
    std::atomic<std::uint64_t> lost{0};
    std::atomic<std::uint64_t> torn{0};
    std::atomic<std::uint64_t> refused{0};
};

Shared& shareMemory() {
    void* const memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        throw std::system_error(errno, std::generic_category(), "mmap");
    }
    return *new (memory) Shared;
}

std::chrono::microseconds delayOfOneByte(0);

// Who adds is told by the record's unit.
constexpr std::int64_t busy = 1;
constexpr std::int64_t visitor = 2;

void add(const support::NumberedLogbook& open, std::int64_t who, std::uint64_t number) {
    Entry entry = lgb::LogbookEntryCreator::create(
        lgb::Entry(lgb::code::Code(20, tqbase2::nsa::zel::enums::LogbookEntryType::Info)));
    entry.details.unit = who;
    entry.details.device = static_cast<std::int64_t>(number);
    open.logbook->add(entry);
}

/// Holds the newest records against what had been acknowledged before they were read.
void look(const support::NumberedLogbook& open, std::uint64_t adds, std::uint64_t openings, Shared& shared) {
    constexpr unsigned int newest = 300;
    const std::vector<Entry> page = open.logbook->fetch(0, newest);
    std::map<std::int64_t, std::uint64_t> next{{busy, 0}, {visitor, 0}};
    for (const Entry& entry : page) {
        const auto number = static_cast<std::uint64_t>(entry.details.device);
        std::uint64_t& expected = next[entry.details.unit];
        if (expected == 0) {
            const std::uint64_t acknowledged = entry.details.unit == busy ? adds : openings;
            shared.lost += number < acknowledged ? acknowledged - number : 0;
        } else if (number != expected) {
            ++shared.lost;
        }
        expected = number - 1;
    }
    const std::uint64_t kept = std::min<std::uint64_t>(newest, adds + openings);
    shared.torn += page.size() < kept ? kept - page.size() : 0;
}

/// Runs work in a process of its own; what it throws is counted.
template <typename Work>
pid_t start(Shared& shared, Work work) {
    const pid_t child = fork();
    if (child == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child != 0) {
        return child;
    }
    try {
        work();
    } catch (const std::exception& exception) {
        std::cerr << exception.what() << '\n';
        ++shared.refused;
        shared.done = true;
    }
    _exit(0);
}

void addWithoutPause(const support::Place& place, Shared& shared) {
    const support::NumberedLogbook open(place);
    while (!shared.done) {
        add(open, busy, shared.adds + 1);
        ++shared.adds;
    }
}

void comeAndGo(const support::Place& place, Shared& shared) {
    while (!shared.done) {
        const std::uint64_t adds = shared.adds;
        const std::uint64_t openings = shared.openings;
        const support::NumberedLogbook open(place);
        look(open, adds, openings, shared);
        add(open, visitor, openings + 1);
        ++shared.openings;
    }
}

int run(int argc, char** argv) {
    std::uint64_t delay = 0;
    const support::Extent extent = support::extentOf(
        argc, argv, usualSeconds, {{"--delay", &delay, "microseconds that a write of one byte takes, 0 unless given"}});
    delayOfOneByte = std::chrono::microseconds(delay);
    const support::TemporaryFolder folder;
    const support::Place place{folder.path(), capacity};
    Shared& shared = shareMemory();
    const pid_t writer = start(shared, [&] { addWithoutPause(place, shared); });
    const pid_t visits = start(shared, [&] { comeAndGo(place, shared); });
    for (std::uint64_t second = 0; second < extent.rounds && !shared.done; ++second) {
        sleep(1);
    }
    shared.done = true;
    waitpid(writer, nullptr, 0);
    waitpid(visits, nullptr, 0);

    support::Failures failures;
    try {
        look(support::NumberedLogbook(place), shared.adds, shared.openings, shared);
    } catch (const std::exception& exception) {
        std::cerr << "in the end: " << exception.what() << '\n';
        ++shared.refused;
    }
    failures.expect(shared.lost == 0, "acknowledged records were lost");
    failures.expect(shared.torn == 0, "records came back in part");
    failures.expect(shared.refused == 0, "the logbook could not be used");
    failures.expect(shared.openings > 0 && shared.adds > 0, "nobody came, or nobody added: too short to tell");
    return failures.conclude("comings and goings: " + std::to_string(shared.openings) + " openings, " +
                             std::to_string(shared.adds) + " adds beside them, " + std::to_string(shared.lost) +
                             " lost, " + std::to_string(shared.torn) + " unreadable, " +
                             std::to_string(shared.refused) + " refused");
}

template <typename Offset>
ssize_t writeSlowly(const char* function, int file, const void* bytes, std::size_t count, Offset offset) {
    if (count == 1 && delayOfOneByte.count() > 0) {
        usleep(static_cast<useconds_t>(delayOfOneByte.count()));
    }
    return support::callBehind<ssize_t>(function, file, bytes, count, offset);
}

}  // namespace

// In front of the C library's, for SQLite too.
#pragma GCC visibility push(default)

extern "C" {

ssize_t writeAt(int file, const void* bytes, std::size_t count, long offset) TQZEL_INSTEAD_OF(pwrite);
ssize_t writeAt64(int file, const void* bytes, std::size_t count, std::int64_t offset) TQZEL_INSTEAD_OF(pwrite64);

ssize_t writeAt(int file, const void* bytes, std::size_t count, long offset) {
    return writeSlowly("pwrite", file, bytes, count, offset);
}

ssize_t writeAt64(int file, const void* bytes, std::size_t count, std::int64_t offset) {
    return writeSlowly("pwrite64", file, bytes, count, offset);
}

}  // extern "C"

#pragma GCC visibility pop

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
