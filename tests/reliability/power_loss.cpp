// Power is lost at any moment: while a logbook is made, opened, added to, cleared, closed or healed, by one process or
// by several at once, and again while it recovers. Each system call that changes the logbook's folder is recorded as it
// is made, and cut off anywhere; of what the disk had not been made to sync until then, anything may be missing,
// whatever the order. What was acknowledged must be there when the logbook is opened again: all of it, whole, in order,
// once.

#include "CapturedErrors.h"
#include "Check.h"
#include "Ledger.h"
#include "Medium.h"
#include "NumberedLogbook.h"
#include "TemporaryFolder.h"
#include "random.h"
#include "recording.h"
#include "vfs.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <exception>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <vector>

namespace {

using support::Entry;
using support::Event;
using support::NumberedLogbook;
using support::oneIn;
using support::Random;
using support::Tree;
using support::upTo;

constexpr std::uint64_t usualRounds = 1500;

/// What a process says of itself between its calls.
enum class Moment : std::int32_t {
    Opening,
    Opened,
    Adding,
    Added,
    Clearing,
    Cleared,
    Closing,
    Closed,
    Damaged,
    Looked,
};

/// @param number of the record, or of the look at what is stored
void note(Moment moment, std::int64_t number = 0) {
    support::note(static_cast<std::int32_t>(moment), number);
}

bool isNote(const Event& event) {
    return event.kind == Event::Kind::Note;
}

Moment momentOf(const Event& note) {
    return static_cast<Moment>(note.descriptor);
}

/// What may be going on.
enum class Doing { Making, Opening, Adding, Clearing, Closing, Healing };

constexpr std::array<const char*, 6> doingNames = {"making", "opening", "adding", "clearing", "closing", "healing"};

/// What went on over all rounds.
struct Figures {
    std::array<std::int64_t, doingNames.size()> losses{};  // index is Doing
    std::int64_t ofOne = 0;
    std::int64_t ofSeveral = 0;
    std::int64_t recovering = 0;
    std::int64_t calls = 0;
    std::int64_t sectors = 0;
    std::int64_t acknowledged = 0;
    std::int64_t unacknowledged = 0;
    std::int64_t returned = 0;
    std::int64_t refused = 0;
    std::int64_t broken = 0;
    std::int64_t untrue = 0;
    std::int64_t saidLost = 0;
    support::Losses records;

    std::int64_t wrong() const { return refused + broken + saidLost + records.all(); }

    bool sawAll() const {
        return ofOne > 0 && ofSeveral > 0 && recovering > 0 &&
               std::all_of(losses.begin(), losses.end(), [](std::int64_t count) { return count > 0; });
    }

    std::string text() const {
        std::string all = "power loss:";
        for (std::size_t doing = 0; doing < losses.size(); ++doing) {
            all += ' ' + std::to_string(losses[doing]) + ' ' + doingNames[doing] + ',';
        }
        return all + ' ' + std::to_string(ofOne) + " of one process, " + std::to_string(ofSeveral) + " of several, " +
               std::to_string(recovering) + " again while recovering, " + std::to_string(calls) + " calls recorded, " +
               std::to_string(sectors) + " sectors, " + std::to_string(acknowledged) + " records acknowledged, " +
               std::to_string(unacknowledged) + " stored unacknowledged, " + std::to_string(returned) + " late, " +
               std::to_string(refused) + " refused, " + std::to_string(broken) + " broken files, " +
               std::to_string(saidLost) + " said to be lost, " + records.text();
    }
};

/// All records of a logbook at some moment.
struct Look {
    std::vector<Entry> stored;
    bool isHealed = false;  // just before
    bool isInOrder = true;  // the file, as SQLite sees it
};

/// What was asked of a logbook, each process with numbers of its own.
class Ledgers {
public:
    static constexpr std::int64_t recordsOfOne = 1000000;

    explicit Ledgers(std::uint32_t recordsKept) : capacity(recordsKept) {}

    support::Ledger& of(std::int64_t who) {
        return ledgers.try_emplace(who, capacity, who * recordsOfOne).first->second;
    }

    void take(const Event& event, const std::vector<Look>& looks) {
        if (!isNote(event)) {
            return;
        }
        support::Ledger& ledger = of(event.position / recordsOfOne);
        switch (momentOf(event)) {
            case Moment::Adding:
                unanswered.insert(ledger.adding());
                break;
            case Moment::Added:
                unanswered.erase(event.position);
                ledger.added();
                break;
            case Moment::Clearing:
                ledger.clearing();
                break;
            case Moment::Cleared:
                ledger.cleared();
                gone.clear();
                break;
            case Moment::Damaged:
                damage(looks.at(static_cast<std::size_t>(event.position)));
                break;
            case Moment::Looked:
                settle(looks.at(static_cast<std::size_t>(event.position)).stored);
                break;
            default:
                break;
        }
    }

    support::Losses audit(const std::vector<Entry>& stored) {
        const bool isFull = capacity > 0 && stored.size() >= capacity;
        support::Losses losses;
        losses.strange += capacity > 0 && stored.size() > capacity ? 1 : 0;
        eachWith(stored,
                 [&](const support::Ledger& its, const std::vector<Entry>& own) { losses += its.audit(own, isFull); });
        return losses;
    }

    std::int64_t settle(const std::vector<Entry>& stored) {
        for (const Entry& entry : stored) {
            unanswered.erase(support::numberOf(entry));
        }
        gone.merge(unanswered);
        unanswered.clear();
        std::int64_t inDoubt = 0;
        eachWith(stored, [&](support::Ledger& its, const std::vector<Entry>& own) { inDoubt += its.settle(own); });
        return inDoubt;
    }

    /// A record of which nobody was told that it is stored, and which a first recovery found only in part, may have its
    /// rest written by chance where power is lost again at the same place.
    std::vector<Entry> withoutReturned(std::vector<Entry> stored) const {
        stored.erase(std::remove_if(stored.begin(), stored.end(),
                                    [&](const Entry& entry) { return gone.count(support::numberOf(entry)) > 0; }),
                     stored.end());
        return stored;
    }

    std::uint32_t recordsKept() const { return capacity; }

    bool isDamaged() const { return damaged; }

    /// Not every damage is one that opening finds and heals.
    bool isFileInOrder() const { return inOrder; }

private:
    void damage(const Look& left) {
        damaged = true;
        inOrder = left.isInOrder;
        eachWith(left.stored, [](support::Ledger& its, const std::vector<Entry>& own) { its.damaged(own); });
    }

    /// Each ledger with its own records.
    template <typename Operation>
    void eachWith(const std::vector<Entry>& stored, Operation operation) {
        std::map<std::int64_t, std::vector<Entry>> own;
        for (const Entry& entry : stored) {
            own[support::numberOf(entry) / recordsOfOne].push_back(entry);
        }
        for (const auto& [who, entries] : own) {
            of(who);
        }
        for (auto& [who, ledger] : ledgers) {
            operation(ledger, own[who]);
        }
    }

    std::uint32_t capacity;
    std::map<std::int64_t, support::Ledger> ledgers;
    std::set<std::int64_t> unanswered;  // numbers of records that were being added
    std::set<std::int64_t> gone;        // those of them that were not there later
    bool damaged = false;
    bool inOrder = true;
};

/// The system calls of a time, and what is known of it.
struct Record {
    Record(Tree before, Ledgers knownBefore) : begin(std::move(before)), known(std::move(knownBefore)) {}

    Tree begin;
    Ledgers known;
    std::vector<Event> events;
    std::vector<Look> looks;
    std::string index;  // as it was when nobody used the logbook

    Ledgers ledgersInTheEnd() const {
        Ledgers ledgers = known;
        for (const Event& event : events) {
            ledgers.take(event, looks);
        }
        return ledgers;
    }

    /// What was going on after each event, by the process that it is of.
    std::vector<Doing> doings() const {
        std::vector<Doing> all;
        std::map<std::int32_t, Doing> current;
        Doing opening = Doing::Making;
        for (const Event& event : events) {
            Doing& doing = current.try_emplace(event.process, opening).first->second;
            const auto found = isNote(event) ? begun.find(momentOf(event)) : begun.end();
            if (found != begun.end()) {
                doing = found->second;
            } else if (isNote(event) && momentOf(event) == Moment::Opening) {
                doing = opening;
            } else if (isNote(event) && momentOf(event) == Moment::Opened) {
                opening = Doing::Opening;
            } else if (isNote(event) && momentOf(event) == Moment::Damaged) {
                const bool heals = looks.at(static_cast<std::size_t>(event.position)).isHealed;
                opening = heals ? Doing::Healing : Doing::Opening;
            }
            all.push_back(doing);
        }
        return all;
    }

private:
    static inline const std::map<Moment, Doing> begun = {
        {Moment::Adding, Doing::Adding}, {Moment::Clearing, Doing::Clearing}, {Moment::Closing, Doing::Closing}};
};

bool isIndex(const std::string& path) {
    return std::filesystem::path(path).extension() == ".db-shm";
}

std::unique_ptr<NumberedLogbook> opened(const support::Place& place) {
    note(Moment::Opening);
    auto open = std::make_unique<NumberedLogbook>(place);
    note(Moment::Opened);
    return open;
}

void add(const NumberedLogbook& open, std::int64_t number) {
    note(Moment::Adding, number);
    open.logbook->add(support::recordOf(number));
    note(Moment::Added, number);
}

void clear(const NumberedLogbook& open) {
    note(Moment::Clearing);
    open.logbook->clear();
    note(Moment::Cleared);
}

void leave(std::unique_ptr<NumberedLogbook> open) {
    note(Moment::Closing);
    open.reset();
    note(Moment::Closed);
}

/// What a process does with a logbook that others may use, too.
/// @param last number that it has given out
void use(const support::Place& place, std::int64_t last, bool isAlone, Random& random) {
    for (std::int64_t times = upTo(random, 3); times >= 0; --times) {
        auto open = opened(place);
        for (std::int64_t more = upTo(random, 40); more > 0; --more) {
            if (isAlone && oneIn(random, 12)) {
                clear(*open);
            } else {
                add(*open, ++last);
            }
        }
        if (times == 0 && oneIn(random, 3)) {
            static_cast<void>(open.release());  // ends without closing it
        } else {
            leave(std::move(open));
        }
    }
}

/// A process of its own for one of those who use a logbook.
template <typename Work>
pid_t start(Work work) {
    const pid_t child = fork();
    if (child == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child != 0) {
        return child;
    }
    try {
        work();
        _exit(0);
    } catch (const std::exception& exception) {
        std::cerr << "used: " << exception.what() << '\n';
        _exit(1);
    }
}

bool endsWell(pid_t process) {
    int status = 0;
    return waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::filesystem::path databaseIn(const support::Place& place) {
    return standalone::logbookFile(place.folder, support::numberedName);
}

/// Changes some bytes of what the database holds, and makes that safe from power loss.
void damage(const std::filesystem::path& database, Random& random) {
    constexpr std::size_t pageBytes = 1024;
    constexpr std::size_t pagesAt = 30;  // as far as they fit into two bytes
    const std::string content = support::contentOf(database);
    const auto pages =
        static_cast<unsigned char>(content.at(pagesAt)) * 256U + static_cast<unsigned char>(content.at(pagesAt + 1));
    const auto used = static_cast<std::int64_t>(std::min(content.size(), std::max(pages, 1U) * pageBytes));
    const int descriptor = open(database.c_str(), O_RDWR);
    bool isDone = true;
    for (int times = 0; times < 3; ++times) {
        const std::int64_t at = upTo(random, used - 1);
        const auto changed = static_cast<char>(~content.at(static_cast<std::size_t>(at)));
        isDone = isDone && pwrite(descriptor, &changed, 1, static_cast<off_t>(at)) == 1;
    }
    isDone = isDone && fsync(descriptor) == 0;
    close(descriptor);
    if (!isDone) {
        throw std::system_error(errno, std::generic_category(), database.string());
    }
}

/// Records what happens to logbooks, and takes their power.
class PowerLoss {
public:
    PowerLoss(std::uint32_t seed, bool ignores) : random(seed), ignoresSyncs(ignores) {}

    void cutALife(bool isAlone, std::uint64_t cuts) {
        const Record life = live(isAlone);
        const auto count = static_cast<std::int64_t>(cuts);
        (isAlone ? figures.ofOne : figures.ofSeveral) += count;
        cut(life, count, false);
    }

    int conclude() const {
        support::Failures failures;
        failures.expect(figures.untrue == 0, "the files were not what was recorded");
        failures.expect(figures.refused == 0, "the logbook could not be used after a loss");
        failures.expect(figures.broken == 0, "a file was not in order");
        figures.records.expectNone(failures);
        failures.expect(figures.saidLost == 0,
                        "records were said to be lost where neither a file was damaged nor a disk full");
        failures.expect(figures.sawAll(), "not every activity was hit: too few rounds to tell");
        for (const std::string& trouble : troubles) {
            failures.expect(false, trouble);
        }
        return failures.conclude(figures.text());
    }

private:
    Record live(bool isAlone) {
        constexpr std::array<std::uint32_t, 4> capacities = {0, 5, 40, 500};
        const std::uint32_t capacity = support::oneOf(capacities, random);
        const support::TemporaryFolder temporary;
        const std::filesystem::path folder = std::filesystem::canonical(temporary.path());
        const support::Place place{folder / "state" / "logbooks", capacity};
        Record record({}, Ledgers(capacity));
        const support::Recording recording(
            folder, oneIn(random, 4) ? support::Space::CanNotBeAllotted : support::Space::CanBeAllotted);
        for (std::int64_t turns = upTo(random, 2); turns >= 0; --turns) {
            const std::int64_t first = isAlone ? 0 : 1;
            useTogether(place, record.ledgersInTheEnd(), first, isAlone ? first : upTo(random, 1) + 2);
            record.index = support::contentOf(databaseIn(place).string() + "-shm");
            if (oneIn(random, 2)) {
                damageAndLook(place, record);
            }
            record.events = recording.events();
        }
        figures.calls += static_cast<std::int64_t>(record.events.size());
        figures.acknowledged += std::count_if(record.events.begin(), record.events.end(), [](const Event& event) {
            return isNote(event) && momentOf(event) == Moment::Added;
        });
        compare(record, folder);
        expectNothingLost(record.ledgersInTheEnd(), "in a life without a loss");
        return record;
    }

    void useTogether(const support::Place& place, Ledgers ledgers, std::int64_t first, std::int64_t last) {
        std::vector<pid_t> processes;
        for (std::int64_t who = first; who <= last; ++who) {
            Random own(static_cast<std::uint32_t>(random()));
            const std::int64_t newest = ledgers.of(who).newest();
            processes.push_back(start([&] { use(place, newest, first == last, own); }));
        }
        for (const pid_t process : processes) {
            if (!endsWell(process)) {
                ++figures.refused;
                tell("a process failed: " + errors.take());
            }
        }
    }

    /// What healing shows then is what the damage has left.
    void damageAndLook(const support::Place& place, Record& record) {
        const auto number = static_cast<std::int64_t>(record.looks.size());
        expectNothingLost(record.ledgersInTheEnd(), "in a life without a loss");
        note(Moment::Damaged, number);
        damage(databaseIn(place), random);
        auto open = opened(place);
        const bool isHealed = errors.take().find("healed with") != std::string::npos;
        record.looks.push_back({open->logbook->fetchAll(), isHealed, support::integrityOf(databaseIn(place)) == "ok"});
        note(Moment::Looked, number);
        leave(std::move(open));
    }

    /// Whether each call that changed a file is in the record.
    void compare(const Record& record, const std::filesystem::path& folder) {
        support::Medium medium(record.begin, false);
        for (const Event& event : record.events) {
            medium.replay(event);
        }
        Tree told = medium.told();
        Tree found = Tree::of(folder);
        for (Tree* const tree : {&told, &found}) {
            for (auto& [path, content] : tree->files) {
                content = isIndex(path) ? "" : content;  // written through a memory map
            }
        }
        figures.untrue += told.folders == found.folders && told.files == found.files ? 0 : 1;
    }

    /// After how many events to cut, ascending: anywhere, where something else than bytes has just changed, or within
    /// one kind of activity.
    std::vector<std::size_t> positions(const Record& record, const std::vector<Doing>& doings, std::int64_t count) {
        std::vector<std::size_t> anywhere;
        std::vector<std::size_t> telling;
        std::map<Doing, std::vector<std::size_t>> within;
        for (std::size_t i = 0; i < record.events.size(); ++i) {
            anywhere.push_back(i + 1);
            within[doings[i]].push_back(i + 1);
            if (record.events[i].kind != Event::Kind::Write && record.events[i].kind != Event::Kind::Resize) {
                telling.push_back(i + 1);
            }
        }
        std::vector<std::size_t> all;
        auto activity = within.begin();
        for (std::int64_t i = 0; i < count; i += 3, ++activity) {  // each activity in turn
            activity = activity == within.end() ? within.begin() : activity;
            for (const auto* const some : {&anywhere, &telling, &activity->second}) {
                all.push_back(support::oneOf(*some, random));
            }
        }
        all.resize(static_cast<std::size_t>(count));
        std::sort(all.begin(), all.end());
        return all;
    }

    void cut(const Record& record, std::int64_t times, bool isRecovery) {
        const std::vector<Doing> doings = record.doings();
        support::Medium medium(record.begin, ignoresSyncs);
        Ledgers ledgers = record.known;
        std::size_t at = 0;
        for (const std::size_t position : positions(record, doings, times)) {
            for (; at < position; ++at) {
                medium.replay(record.events[at]);
                ledgers.take(record.events[at], record.looks);
            }
            const Doing doing = doings[position - 1];
            ++(isRecovery ? figures.recovering : figures.losses.at(static_cast<std::size_t>(doing)));
            Tree left = medium.survivors(random);
            disturbIndex(left, record.index);
            const std::int64_t wrongBefore = figures.wrong();
            recover(left, ledgers, !isRecovery && oneIn(random, 4));
            if (figures.wrong() != wrongBefore) {
                tell("cut after " + std::to_string(position) + " of " + std::to_string(doings.size()) + " calls, " +
                     doingNames.at(static_cast<std::size_t>(doing)) + (isRecovery ? " again" : "") + ", capacity " +
                     std::to_string(ledgers.recordsKept()));
            }
        }
        figures.sectors += medium.sectorsLost();
    }

    /// The memory map beside a database may hold anything.
    void disturbIndex(Tree& tree, const std::string& before) {
        for (auto file = tree.files.begin(); file != tree.files.end(); ++file) {
            if (!isIndex(file->first)) {
                continue;
            }
            const std::int64_t fate = upTo(random, 3);
            if (fate == 0) {
                tree.files.erase(file);
                return;
            }
            if (fate == 1) {
                file->second = before;
            } else if (fate == 2) {
                file->second.resize(std::size_t{32} * 1024);
                std::generate(file->second.begin(), file->second.end(), [&] { return static_cast<char>(random()); });
            }
        }
    }

    /// Opens what a loss has left, looks, and goes on.
    void recover(const Tree& left, Ledgers ledgers, bool isCut) {
        const support::TemporaryFolder temporary;
        const std::filesystem::path folder = std::filesystem::canonical(temporary.path());
        left.writeTo(folder);
        Record record(left, ledgers);
        std::optional<support::Recording> recording;
        if (isCut) {
            recording.emplace(folder);
        }
        try {
            const support::Place place{folder / "state" / "logbooks", ledgers.recordsKept()};
            auto open = opened(place);
            record.looks.push_back(look(*open, ledgers));
            note(Moment::Looked);
            const std::string integrity = support::integrityOf(databaseIn(place));
            figures.broken += integrity == "ok" || !ledgers.isFileInOrder() ? 0 : 1;
            support::Ledger& own = ledgers.of(0);
            add(*open, own.adding());
            figures.records.lost += support::showsLast(*open, own) ? 0 : 1;
            own.added();
            leave(std::move(open));
        } catch (const std::exception& exception) {
            ++figures.refused;
            tell(exception.what());
        }
        expectNothingLost(ledgers, "after a loss");
        if (recording) {
            record.events = recording->events();
            recording.reset();
            compare(record, folder);
            cut(record, 2, true);
        }
    }

    Look look(const NumberedLogbook& open, Ledgers& ledgers) {
        const std::vector<Entry> all = open.logbook->fetchAll();
        std::vector<Entry> stored = ledgers.withoutReturned(all);
        figures.returned += static_cast<std::int64_t>(all.size() - stored.size());
        figures.records += ledgers.audit(stored);
        figures.records.torn += std::int64_t{open.database->count()} - static_cast<std::int64_t>(all.size());
        figures.unacknowledged += ledgers.settle(stored);
        return {std::move(stored)};
    }

    /// What the platform tells of itself: without damage no record may be missing, and no disk was full.
    void expectNothingLost(const Ledgers& ledgers, const std::string& when) {
        const std::string said = errors.take();
        const bool saysLost = !ledgers.isDamaged() && said.find("lost: ") != std::string::npos;
        if (saysLost || said.find("the disk is full") != std::string::npos) {
            ++figures.saidLost;
            tell(when + ": " + said);
        }
    }

    void tell(const std::string& trouble) {
        constexpr std::size_t most = 10;
        if (troubles.size() < most) {
            troubles.push_back(trouble);
        }
    }

    Random random;
    bool ignoresSyncs;
    support::CapturedErrors errors;
    Figures figures;
    std::vector<std::string> troubles;
};

int run(int argc, char** argv) {
    bool ignoresSyncs = false;
    const support::Extent extent =
        support::extentOf(argc, argv, usualRounds,
                          {{"--ignore-syncs", &ignoresSyncs, "on a disk that does not sync: must be found out"}});
    PowerLoss powerLoss(extent.seed, ignoresSyncs);
    constexpr std::uint64_t cutsOfALife = 20;
    for (std::uint64_t round = 0; round < extent.rounds; round += cutsOfALife) {
        const bool isAlone = round / cutsOfALife % 2 == 0;
        powerLoss.cutALife(isAlone, std::min(cutsOfALife, extent.rounds - round));
    }
    return powerLoss.conclude();
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
