// A process is killed before each of its system calls, and in the middle of each write: while it makes a logbook, opens
// it, adds, closes it, and while it heals one that is damaged in one way or another. So may be whoever comes next. Then
// another process opens the logbook: it holds what an undisturbed process would have found, and all that was
// acknowledged; recording goes on, and nothing of the killed ones stays in the folder. In the same way one process is
// stopped while another comes, and killed while that waits.

#include "CapturedErrors.h"
#include "Check.h"
#include "TemporaryFolder.h"
#include "calls.h"
#include "child.h"
#include "numbersOf.h"
#include "random.h"
#include "scenes.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <new>
#include <string>
#include <system_error>
#include <vector>

namespace {

using support::endOf;
using support::FileCall;
using support::Random;
using support::Scene;

constexpr std::uint64_t usualRounds = 60;  // kills in a row, and meetings, for each way to begin
constexpr std::uint64_t usualEvery = 12;

/// The call before which this process ends, counted from 1, writes twice; 0: none.
std::uint64_t lastCall = 0;
std::uint64_t calls = 0;
int lastSignal = SIGKILL;

/// Whether it is time to die.
bool isLast() {
    return lastCall != 0 && ++calls == lastCall;
}

support::Fate dieIfLast(FileCall call) {
    if (isLast()) {
        return {0, lastSignal, false};
    }
    if (call == FileCall::Write && isLast()) {
        return {0, lastSignal, true};
    }
    return {};
}

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
    support::Aftermath aftermath;
};

std::string addedText(std::size_t who) {
    return "added by " + std::to_string(who);
}

/// Lets processes die on a stage.
class Killing {
public:
    Killing(const support::Stage& on, bool acknowledgesEarly, Shared& told, Figures& all)
        : stage(on), lies(acknowledgesEarly), shared(told), figures(all) {}

    std::string title() const { return stage.title(); }

    void reset() {
        stage.reset();
        shared.acknowledged = {};
    }

    /// Opens, adds and closes, up to a call of the system.
    /// @param last that call, 0: to the end
    pid_t startUpTo(std::uint64_t last, std::size_t who, int signal = SIGKILL) {
        return support::startChild([&] {
            lastSignal = signal;
            calls = 0;
            lastCall = last == 0 ? UINT64_MAX : last;
            shared.acknowledged[who] = lies;
            {
                const auto database = stage.open();
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
            ++figures.aftermath.refused;
        }
        return shared.calls;
    }

    /// Looks at what the others left.
    void look(const std::string& what, support::Failures& failures) {
        std::vector<support::Added> added;
        for (std::size_t who = 0; who < shared.acknowledged.size(); ++who) {
            added.push_back({addedText(who), shared.acknowledged[who]});
        }
        stage.look(what, added, figures.aftermath, failures);
    }

private:
    const support::Stage& stage;
    bool lies;
    Shared& shared;
    Figures& figures;
};

void killAtEachCall(Killing& killing, std::uint64_t every, Random& random, Figures& figures,
                    support::Failures& failures) {
    const std::uint64_t all = killing.callsInAll();
    for (auto last = static_cast<std::uint64_t>(support::upTo(random, static_cast<std::int64_t>(every) - 1)) + 1;
         last <= all; last += every) {
        killing.reset();
        const bool isKilled = WIFSIGNALED(endOf(killing.startUpTo(last, 0)));
        figures.kills += isKilled ? 1U : 0U;
        killing.look("killed before call " + std::to_string(last) + " of " + std::to_string(all), failures);
    }
}

void killInARow(Killing& killing, std::uint64_t rounds, Random& random, Figures& figures, support::Failures& failures) {
    const auto all = static_cast<std::int64_t>(killing.callsInAll());
    for (std::uint64_t round = 0; round < rounds; ++round) {
        killing.reset();
        std::string what = "killed in a row before calls";
        const auto depth = static_cast<std::size_t>(2 + support::upTo(random, 4));
        for (std::size_t who = 0; who < depth; ++who) {
            const auto last = static_cast<std::uint64_t>(1 + support::upTo(random, all));
            const bool isKilled = WIFSIGNALED(endOf(killing.startUpTo(last, who)));
            figures.kills += isKilled ? 1U : 0U;
            figures.inARow += isKilled ? 1U : 0U;
            what += ' ' + std::to_string(last);
        }
        killing.look(what, failures);
    }
}

/// One is stopped, another comes, and the first is killed while that may wait for it.
void killWhoIsWaitedFor(Killing& killing, std::uint64_t rounds, Random& random, Figures& figures,
                        support::Failures& failures) {
    const auto all = static_cast<std::int64_t>(killing.callsInAll());
    for (std::uint64_t round = 0; round < rounds; ++round) {
        killing.reset();
        const auto last = static_cast<std::uint64_t>(1 + support::upTo(random, all - 1));
        const pid_t first = killing.startUpTo(last, 0, SIGSTOP);
        int status = 0;
        waitpid(first, &status, WUNTRACED);
        const pid_t second = killing.startUpTo(0, 1);
        usleep(static_cast<useconds_t>(support::upTo(random, 4000)));
        if (WIFSTOPPED(status)) {
            kill(first, SIGKILL);
            endOf(first);
            ++figures.kills;
            ++figures.meetings;
        }
        const bool goesOn = endOf(second) == 0;
        figures.aftermath.refused += goesOn ? 0U : 1U;
        const std::string what = "met by another, and killed before call " + std::to_string(last);
        failures.expect(goesOn, killing.title() + ", " + what + ": the other does not go on");
        killing.look(what, failures);
    }
}

int run(int argc, char** argv) {
    std::uint64_t every = usualEvery;
    bool lies = false;
    const support::Extent extent =
        support::extentOf(argc, argv, usualRounds,
                          {{"--every", &every, "be killed only before each n-th call"},
                           {"--lie", &lies, "acknowledge records before they are added: must be found out"}});
    support::setFates(dieIfLast);
    Random random(extent.seed);
    Shared& shared = shareMemory();
    Figures figures;
    support::Failures failures;
    {
        support::CapturedErrors errors;
        for (const Scene& scene : support::scenes()) {
            const support::Stage stage(scene);
            const std::size_t found = stage.foundUndisturbed().size();
            failures.expect(found >= scene.records,
                            stage.title() + ": undisturbed, " + std::to_string(found) + " records");
            Killing killing(stage, lies, shared, figures);
            killAtEachCall(killing, every, random, figures, failures);
            killInARow(killing, extent.rounds / 10, random, figures, failures);
            killWhoIsWaitedFor(killing, extent.rounds / 20, random, figures, failures);
            errors.take();
        }
    }
    failures.expect(figures.kills > 0 && figures.inARow > 0 && figures.meetings > 0, "too few kills to tell");
    const auto number = [](std::uint64_t value) { return std::to_string(value); };
    return failures.conclude("killed healer: " + number(figures.kills) + " kills, " + number(figures.inARow) +
                             " of them in a row, " + number(figures.meetings) + " while another waited, " +
                             number(figures.aftermath.lost) + " lost, " + number(figures.aftermath.strange) +
                             " with other records, " + number(figures.aftermath.leftBehind) +
                             " with files left behind, " + number(figures.aftermath.refused) + " can't record");
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
