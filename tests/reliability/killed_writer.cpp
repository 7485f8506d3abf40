// A process that adds to a logbook, and clears it now and then, is killed at any moment: while it makes the file, opens
// it, adds, or clears. Meanwhile another process reads pages, and is killed too. What the writer was told to be stored
// must be there when the logbook is opened again: all of it, whole, in order, once.

#include "Check.h"
#include "Losses.h"
#include "NumberedLogbook.h"
#include "TemporaryFolder.h"
#include "random.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace {

using support::Entry;
using support::isWhole;
using support::NumberedLogbook;
using support::numberOf;
using support::Place;
using support::Random;
using support::recordOf;
using support::upTo;

constexpr std::uint64_t usualRounds = 500;

/// What the children tell, each in one write, which a kill can't cut.
enum class Event { Opening, Adding, Added, Clearing, Cleared, WholePage, BrokenPage, Refused };

struct Report {
    Event event;
    std::int64_t number;
};

class Pipe {
public:
    Pipe() {
        if (pipe(ends) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe");
        }
    }

    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    ~Pipe() {
        close(ends[0]);
        close(ends[1]);
    }

    /// A child must not keep its own pipe from breaking when the parent ends.
    void onlyWrite() {
        close(ends[0]);
        ends[0] = -1;
    }

    void tell(Event event, std::int64_t number = 0) const {
        const Report report{event, number};
        if (write(ends[1], &report, sizeof report) != sizeof report) {
            _exit(1);
        }
    }

    Report wait() const {
        Report report{};
        if (read(ends[0], &report, sizeof report) != sizeof report) {
            throw std::system_error(errno, std::generic_category(), "read");
        }
        return report;
    }

    bool holdsMore() const {
        pollfd readable{ends[0], POLLIN, 0};
        return poll(&readable, 1, 0) == 1;
    }

private:
    int ends[2] = {};
};

/// A child process, until it is killed.
class Child {
public:
    template <typename Work>
    Child(Pipe& pipe, Work work) : id(fork()) {
        if (id == -1) {
            throw std::system_error(errno, std::generic_category(), "fork");
        }
        if (id == 0) {
            pipe.onlyWrite();
            try {
                work();
            } catch (const std::exception& exception) {
                std::cerr << "child: " << exception.what() << '\n';
                pipe.tell(Event::Refused);
            }
            _exit(1);
        }
    }

    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    ~Child() { endNow(); }

    void endNow() {
        if (id > 0) {
            kill(id, SIGKILL);
            awaitEnd();
        }
    }

    void awaitEnd() {
        waitpid(id, nullptr, 0);
        id = 0;
    }

private:
    pid_t id;
};

/// Has this process killed, however busy the machine keeps all others.
void endAfter(std::chrono::microseconds time) {
    sigevent ending{};
    ending.sigev_notify = SIGEV_SIGNAL;
    ending.sigev_signo = SIGKILL;
    timer_t timer{};
    itimerspec end{};
    end.it_value.tv_nsec = static_cast<long>(std::chrono::nanoseconds(time).count());
    if (timer_create(CLOCK_MONOTONIC, &ending, &timer) != 0 || timer_settime(timer, 0, &end, nullptr) != 0) {
        throw std::system_error(errno, std::generic_category(), "timer");
    }
}

/// Adds numbered records and clears now and then, until killed.
[[noreturn]] void writeOn(const Place& place, std::int64_t number, bool lies, Random random, const Pipe& pipe) {
    const NumberedLogbook open(place);
    while (true) {
        if (upTo(random, 15) == 0) {
            pipe.tell(Event::Clearing);
            open.logbook->clear();
            pipe.tell(Event::Cleared);
            continue;
        }
        pipe.tell(lies ? Event::Added : Event::Adding, number);
        open.logbook->add(recordOf(number));
        pipe.tell(Event::Added, number);
        ++number;
    }
}

/// Whether a page holds whole records in order, newest first, no more than are kept.
bool isWhole(const std::vector<Entry>& page, const Place& place) {
    const auto leavesGap = [](const Entry& newer, const Entry& older) {
        return numberOf(newer) != numberOf(older) + 1;
    };
    return std::all_of(page.begin(), page.end(), [](const Entry& entry) { return isWhole(entry); }) &&
           std::adjacent_find(page.begin(), page.end(), leavesGap) == page.end() &&
           (place.capacity == 0 || page.size() <= place.capacity);
}

/// Reads pages, until killed.
[[noreturn]] void readOn(const Place& place, Random random, const Pipe& pipe) {
    const NumberedLogbook open(place);
    while (true) {
        const auto offset = static_cast<unsigned int>(upTo(random, 20));
        const auto count = static_cast<unsigned int>(upTo(random, 100));
        pipe.tell(isWhole(open.logbook->fetch(offset, count), place) ? Event::WholePage : Event::BrokenPage);
    }
}

/// What went on over all rounds.
struct Figures {
    std::int64_t kills = 0;
    std::int64_t opening = 0;
    std::int64_t adding = 0;
    std::int64_t clearing = 0;
    std::int64_t acknowledged = 0;
    std::int64_t unacknowledged = 0;
    std::int64_t pages = 0;
    std::int64_t brokenPages = 0;
    std::int64_t refused = 0;
    support::Losses records;

    std::int64_t wrong() const { return brokenPages + refused + records.all(); }

    std::string text() const {
        return std::to_string(kills) + " kills (" + std::to_string(opening) + " opening, " + std::to_string(adding) +
               " adding, " + std::to_string(clearing) + " clearing), " + std::to_string(acknowledged) +
               " records acknowledged, " + std::to_string(unacknowledged) + " stored unacknowledged, " +
               std::to_string(pages) + " pages read, " + std::to_string(brokenPages) + " broken pages, " +
               std::to_string(refused) + " refused, " + records.text();
    }
};

/// What the logbook must hold by what was acknowledged: the numbers from `first` to `last`, as far as they are kept.
struct Ledger {
    std::int64_t first = 1;
    std::int64_t last = 0;
    std::optional<Event> begun;  // and not acknowledged

    void take(const Report& report, Figures& figures) {
        switch (report.event) {
            case Event::Opening:
            case Event::Adding:
            case Event::Clearing:
                begun = report.event;
                break;
            case Event::Added:
                figures.acknowledged += report.number - last;
                last = report.number;
                begun.reset();
                break;
            case Event::Cleared:
                first = last + 1;
                begun.reset();
                break;
            case Event::WholePage:
                ++figures.pages;
                break;
            case Event::BrokenPage:
                ++figures.brokenPages;
                break;
            case Event::Refused:
                ++figures.refused;
                break;
        }
    }

    std::int64_t oldestKept(const Place& place) const {
        return place.capacity == 0 ? first : std::max(first, last + 1 - std::int64_t{place.capacity});
    }
};

/// A logbook that is written, killed, and opened again many times.
struct Life {
    explicit Life(std::uint32_t capacity) : place{folder.path(), capacity} {}

    support::TemporaryFolder folder;
    Place place;
    Ledger ledger;
};

/// Takes what the children told, until the writer has told that much.
void listen(Ledger& ledger, const Pipe& pipe, std::int64_t writerReports, Figures& figures) {
    const std::int64_t refusedBefore = figures.refused;
    while (writerReports > 0 && figures.refused == refusedBefore) {
        const Report report = pipe.wait();
        ledger.take(report, figures);
        if (report.event != Event::WholePage && report.event != Event::BrokenPage) {
            --writerReports;
        }
    }
}

void listenToTheLast(Ledger& ledger, const Pipe& pipe, Figures& figures) {
    while (pipe.holdsMore()) {
        ledger.take(pipe.wait(), figures);
    }
}

/// What was begun when the kill came is either done or not.
void settle(Ledger& ledger, const std::vector<Entry>& stored, Figures& figures) {
    if (ledger.begun == Event::Clearing && stored.empty()) {
        ledger.first = ledger.last + 1;
    }
    if (ledger.begun == Event::Adding && !stored.empty() && numberOf(stored.front()) == ledger.last + 1) {
        ++ledger.last;
        ++figures.unacknowledged;
    }
    ledger.begun.reset();
}

/// Compares every stored record with what was acknowledged.
void audit(const Life& life, const std::vector<Entry>& stored, Figures& figures) {
    const std::int64_t oldest = life.ledger.oldestKept(life.place);
    std::map<std::int64_t, int> times;
    std::int64_t before = life.ledger.last + 1;
    for (const Entry& entry : stored) {
        const std::int64_t number = numberOf(entry);
        ++times[number];
        figures.records.torn += isWhole(entry) ? 0 : 1;
        figures.records.strange += number < oldest || number > life.ledger.last ? 1 : 0;
        figures.records.misplaced += number >= before ? 1 : 0;
        before = number;
    }
    for (std::int64_t number = oldest; number <= life.ledger.last; ++number) {
        figures.records.lost += times[number] == 0 ? 1 : 0;
        figures.records.twice += times[number] > 1 ? 1 : 0;
    }
}

/// Opens the logbook after the kill, looks, and goes on.
void reopen(Life& life, Figures& figures) {
    const NumberedLogbook open(life.place);
    const std::vector<Entry> stored = open.logbook->fetchAll();
    figures.records.torn += std::int64_t{open.database->count()} - static_cast<std::int64_t>(stored.size());
    settle(life.ledger, stored, figures);
    audit(life, stored, figures);

    const Entry next = recordOf(++life.ledger.last);
    open.logbook->add(next);
    ++figures.acknowledged;
    const std::vector<Entry> newest = open.logbook->fetch(0, 1);
    figures.records.lost += newest.size() == 1 && numberOf(newest.front()) == numberOf(next) ? 0 : 1;
}

void count(const std::optional<Event>& interrupted, Figures& figures) {
    ++figures.kills;
    figures.opening += interrupted == Event::Opening ? 1 : 0;
    figures.adding += interrupted == Event::Adding ? 1 : 0;
    figures.clearing += interrupted == Event::Clearing ? 1 : 0;
}

/// From a microsecond to 33 milliseconds, each order of magnitude alike: some of them end before a logbook is opened,
/// however fast the machine.
std::chrono::microseconds someMoment(Random& random) {
    return std::chrono::microseconds(std::int64_t{1} << upTo(random, 15));
}

/// One writer from its start to the moment of its death.
void writeAndKill(Life& life, bool lies, std::int64_t writerReports, Random& random, Figures& figures) {
    Pipe pipe;
    const Random writersRandom(random());
    const Random readersRandom(random());
    const std::chrono::microseconds moment = someMoment(random);
    life.ledger.begun = Event::Opening;
    Child writer(pipe, [&] {
        if (writerReports == 0) {
            endAfter(moment);
        }
        writeOn(life.place, life.ledger.last + 1, lies, writersRandom, pipe);
    });
    Child reader(pipe, [&] { readOn(life.place, readersRandom, pipe); });
    if (writerReports == 0) {
        writer.awaitEnd();
    } else {
        listen(life.ledger, pipe, writerReports, figures);
        std::this_thread::sleep_for(moment);
    }
    if (upTo(random, 1) == 0) {
        reader.endNow();  // else it reads on while the logbook is opened again
    }
    writer.endNow();
    listenToTheLast(life.ledger, pipe, figures);
    count(life.ledger.begun, figures);
    reopen(life, figures);
}

Figures killAgainAndAgain(const support::Extent& extent, bool lies) {
    Random random(extent.seed);
    Figures figures;
    std::optional<Life> life;
    for (std::uint64_t round = 0; round < extent.rounds; ++round) {
        const bool fresh = !life || upTo(random, 15) == 0;
        if (fresh) {
            life.emplace(upTo(random, 1) == 0 ? 0 : 40);
        }
        const std::int64_t wrongBefore = figures.wrong();
        try {
            writeAndKill(*life, lies, fresh ? 0 : upTo(random, 20), random, figures);
        } catch (const std::exception& exception) {
            std::cerr << "opened again: " << exception.what() << '\n';
            ++figures.refused;
        }
        if (figures.wrong() != wrongBefore) {
            life.reset();  // so that one loss counts once
        }
    }
    return figures;
}

int run(int argc, char** argv) {
    bool lies = false;
    const support::Extent extent = support::extentOf(
        argc, argv, usualRounds, {{"--lie", &lies, "acknowledge records before they are added: must be found out"}});
    const Figures figures = killAgainAndAgain(extent, lies);

    support::Failures failures;
    failures.expect(figures.brokenPages == 0, "a page was not whole records in order");
    failures.expect(figures.refused == 0, "the logbook could not be used after a kill");
    figures.records.expectNone(failures);
    failures.expect(figures.opening > 0 && figures.adding > 0 && figures.clearing > 0,
                    "no kill while opening, adding or clearing: too few rounds to tell");
    return failures.conclude(figures.text());
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
