// Power is lost at any moment: while a logbook is made, opened, added to, cleared or closed, and again while it
// recovers. Of what the disk had not been made to sync, anything may be missing. What was acknowledged must be there
// when the logbook is opened again: all of it, whole, in order, once.

#include "Check.h"
#include "Ledger.h"
#include "Medium.h"
#include "NumberedLogbook.h"
#include "TemporaryFolder.h"
#include "random.h"
#include "vfs.h"

#include <tqbase2/system/Exception.h>

#include <algorithm>
#include <array>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

namespace {

using support::NumberedLogbook;
using support::oneIn;
using support::Random;
using support::upTo;

constexpr std::uint64_t usualRounds = 2000;

/// What may be going on.
enum class Doing { Making, Opening, Adding, Clearing, Closing };

constexpr std::array<const char*, 5> doingNames = {"making", "opening", "adding", "clearing", "closing"};

/// What went on over all rounds.
struct Figures {
    std::array<std::int64_t, doingNames.size()> losses{};  // index is Doing
    std::int64_t sectors = 0;
    std::int64_t acknowledged = 0;
    std::int64_t unacknowledged = 0;
    std::int64_t refused = 0;
    std::int64_t broken = 0;
    std::int64_t untrue = 0;
    support::Losses records;

    std::int64_t wrong() const { return refused + broken + records.all(); }

    std::string text() const {
        std::string all = "power loss:";
        for (std::size_t doing = 0; doing < losses.size(); ++doing) {
            all += ' ' + std::to_string(losses[doing]) + ' ' + doingNames[doing] + ',';
        }
        return all + ' ' + std::to_string(sectors) + " sectors, " + std::to_string(acknowledged) +
               " records acknowledged, " + std::to_string(unacknowledged) + " stored unacknowledged, " +
               std::to_string(refused) + " refused, " + std::to_string(broken) + " broken files, " + records.text();
    }
};

/// A logbook that is used, loses power, and is opened again many times.
class Life {
public:
    Life(std::uint32_t capacity, bool ignoresSyncs, Figures& counted)
        : medium(ignoresSyncs), place{folder.path(), capacity}, ledger(capacity), figures(counted) {}

    ~Life() { figures.sectors += medium.sectorsLost(); }

    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

    /// Opens, adds, clears and closes, until power is lost after so many calls that change the disk.
    void useUntilLoss(std::int64_t calls, Random& random) {
        medium.losePowerAfter(calls);
        try {
            while (medium.hasPower()) {
                use(random);
            }
        } catch (const tqbase2::system::Exception&) {
            if (medium.hasPower()) {
                throw;
            }
        }
        comeBack(random);
    }

    /// Opens the logbook, looks, and goes on; often to the next loss, with the log not written back.
    void lookAndGoOn(Random& random) {
        auto open = std::make_unique<NumberedLogbook>(place);
        const support::Finding found = support::look(*open, ledger);
        figures.records += found.losses;
        figures.unacknowledged += found.inDoubt;
        const std::string integrity =
            support::integrityOf(standalone::logbookFile(place.folder, support::numberedName));
        figures.broken += integrity == "ok" ? 0 : 1;

        add(*open);
        figures.records.lost += support::showsLast(*open, ledger) ? 0 : 1;
        if (oneIn(random, 2)) {
            medium.losePowerAfter(0);
        }
        doing = Doing::Closing;
        open.reset();
        if (!medium.hasPower()) {
            comeBack(random);
        }
    }

private:
    void use(Random& random) {
        doing = made ? Doing::Opening : Doing::Making;
        auto open = std::make_unique<NumberedLogbook>(place);
        made = true;
        for (std::int64_t more = upTo(random, 60); more > 0 && medium.hasPower(); --more) {
            if (oneIn(random, 12)) {
                clear(*open);
            } else {
                add(*open);
            }
        }
        if (medium.hasPower()) {
            doing = Doing::Closing;
        }
        open.reset();
    }

    void add(NumberedLogbook& open) {
        doing = Doing::Adding;
        open.logbook->add(support::recordOf(ledger.adding()));
        ledger.added();
        ++figures.acknowledged;
    }

    void clear(NumberedLogbook& open) {
        doing = Doing::Clearing;
        ledger.clearing();
        open.logbook->clear();
        ledger.cleared();
    }

    void comeBack(Random& random) {
        ++figures.losses.at(static_cast<std::size_t>(doing));
        figures.untrue += medium.restore(random) ? 0 : 1;
    }

    support::TemporaryFolder folder;
    support::Medium medium;
    support::Place place;
    support::Ledger ledger;
    Figures& figures;
    Doing doing = Doing::Making;
    bool made = false;
};

/// From none to 500, each order of magnitude alike.
std::int64_t someCalls(Random& random) {
    return upTo(random, std::int64_t{1} << upTo(random, 9));
}

Figures losePowerAgainAndAgain(const support::Extent& extent, bool ignoresSyncs) {
    constexpr std::array<std::uint32_t, 4> capacities = {0, 5, 40, 500};
    Random random(extent.seed);
    Figures figures;
    std::unique_ptr<Life> life;
    for (std::uint64_t round = 0; round < extent.rounds; ++round) {
        if (!life || oneIn(random, 8)) {
            life.reset();  // one at a time
            life =
                std::make_unique<Life>(capacities.at(static_cast<std::size_t>(upTo(random, 3))), ignoresSyncs, figures);
        }
        const std::int64_t wrongBefore = figures.wrong();
        try {
            life->useUntilLoss(someCalls(random), random);
            if (!oneIn(random, 3)) {
                life->lookAndGoOn(random);
            }
        } catch (const std::exception& exception) {
            std::cerr << "opened again: " << exception.what() << '\n';
            ++figures.refused;
        }
        if (figures.wrong() != wrongBefore) {
            life.reset();  // so that one loss counts once
        }
    }
    life.reset();
    return figures;
}

int run(int argc, char** argv) {
    bool ignoresSyncs = false;
    const support::Extent extent =
        support::extentOf(argc, argv, usualRounds,
                          {{"--ignore-syncs", &ignoresSyncs, "on a disk that does not sync: must be found out"}});
    const Figures figures = losePowerAgainAndAgain(extent, ignoresSyncs);

    support::Failures failures;
    failures.expect(figures.untrue == 0, "the files were not what the disk had been told");
    failures.expect(figures.refused == 0, "the logbook could not be used after a loss");
    failures.expect(figures.broken == 0, "a file was not in order");
    figures.records.expectNone(failures);
    failures.expect(
        std::all_of(figures.losses.begin(), figures.losses.end(), [](std::int64_t count) { return count > 0; }),
        "not every activity was hit: too few rounds to tell");
    return failures.conclude(figures.text());
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
