// A process that adds to a logbook, and clears it now and then, is killed at any moment: while it makes the file, opens
// it, adds, or clears. Meanwhile another process reads pages, and is killed too. What the writer was told to be stored
// must be there when the logbook is opened again: all of it, whole, in order, once.

#include "Check.h"
#include "Ledger.h"
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
using support::oneIn;
using support::Place;
using support::Random;
using support::recordOf;
using support::upTo;

constexpr std::uint64_t usualRounds = 500;

/// What the children tell, each in one write, which a kill can't cut.
enum class Event { Opening, Adding, Added, Clearing, Cleared, WholePage, BrokenPage, Refused };

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

    void tell(Event event) const {
        if (write(ends[1], &event, sizeof event) != sizeof event) {
            _exit(1);
        }
    }

    Event wait() const {
        Event event{};
        if (read(ends[0], &event, sizeof event) != sizeof event) {
            throw std::system_error(errno, std::generic_category(), "read");
        }
        return event;
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

/// Adds records, which the ledger of this process numbers as that of the parent does, and clears now and then, until
/// killed.
[[noreturn]] void writeOn(const Place& place, support::Ledger ledger, bool lies, Random random, const Pipe& pipe) {
    const NumberedLogbook open(place);
    while (true) {
        if (oneIn(random, 16)) {
            pipe.tell(Event::Clearing);
            open.logbook->clear();
            pipe.tell(Event::Cleared);
            continue;
        }
        pipe.tell(Event::Adding);
        if (lies) {
            pipe.tell(Event::Added);
        }
        open.logbook->add(recordOf(ledger.adding()));
        if (!lies) {
            pipe.tell(Event::Added);
        }
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

/// A logbook that is written, killed, and opened again many times.
struct Life {
    explicit Life(std::uint32_t capacity) : place{folder.path(), capacity}, ledger(capacity) {}

    support::TemporaryFolder folder;
    Place place;
    support::Ledger ledger;
    std::optional<Event> begun;  // and not acknowledged
};

/// Takes what a child told.
void take(Event event, Life& life, Figures& figures) {
    switch (event) {
        case Event::Opening:
            break;
        case Event::Adding:
            life.ledger.adding();
            life.begun = event;
            break;
        case Event::Added:
            life.ledger.added();
            ++figures.acknowledged;
            life.begun.reset();
            break;
        case Event::Clearing:
            life.ledger.clearing();
            life.begun = event;
            break;
        case Event::Cleared:
            life.ledger.cleared();
            life.begun.reset();
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

/// Takes what the children told, until the writer has told that much.
void listen(Life& life, const Pipe& pipe, std::int64_t writerReports, Figures& figures) {
    const std::int64_t refusedBefore = figures.refused;
    while (writerReports > 0 && figures.refused == refusedBefore) {
        const Event event = pipe.wait();
        take(event, life, figures);
        if (event != Event::WholePage && event != Event::BrokenPage) {
            --writerReports;
        }
    }
}

void listenToTheLast(Life& life, const Pipe& pipe, Figures& figures) {
    while (pipe.holdsMore()) {
        take(pipe.wait(), life, figures);
    }
}

/// Opens the logbook after the kill, looks, and goes on.
void reopen(Life& life, Figures& figures) {
    const NumberedLogbook open(life.place);
    const support::Finding found = support::look(open, life.ledger);
    figures.records += found.losses;
    figures.unacknowledged += found.inDoubt;
    if (life.begun == Event::Adding && found.inDoubt == 0) {
        life.ledger.takeBack();  // readers demand numbers without gaps
    }
    open.logbook->add(recordOf(life.ledger.adding()));
    life.ledger.added();
    ++figures.acknowledged;
    figures.records.lost += support::showsLast(open, life.ledger) ? 0 : 1;
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
    life.begun = Event::Opening;
    Child writer(pipe, [&] {
        if (writerReports == 0) {
            endAfter(moment);
        }
        writeOn(life.place, life.ledger, lies, writersRandom, pipe);
    });
    Child reader(pipe, [&] { readOn(life.place, readersRandom, pipe); });
    if (writerReports == 0) {
        writer.awaitEnd();
    } else {
        listen(life, pipe, writerReports, figures);
        std::this_thread::sleep_for(moment);
    }
    if (oneIn(random, 2)) {
        reader.endNow();  // else it reads on while the logbook is opened again
    }
    writer.endNow();
    listenToTheLast(life, pipe, figures);
    count(life.begun, figures);
    reopen(life, figures);
}

Figures killAgainAndAgain(const support::Extent& extent, bool lies) {
    Random random(extent.seed);
    Figures figures;
    std::optional<Life> life;
    for (std::uint64_t round = 0; round < extent.rounds; ++round) {
        const bool fresh = !life || oneIn(random, 16);
        if (fresh) {
            life.emplace(oneIn(random, 2) ? 0 : 40);
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
