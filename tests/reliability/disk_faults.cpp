// The disk fails: each call of a working session in turn, once or from then on, with an input/output error, as a full
// disk, or in the middle of a write. Each time an operation throws, naming the file, or has done its work; what was
// acknowledged is there, whole, in order, once; and when the disk is well again, all goes on, also without reopening.

#include "Check.h"
#include "Ledger.h"
#include "NumberedLogbook.h"
#include "TemporaryFolder.h"
#include "random.h"
#include "vfs.h"

#include <lgb/ZelLogbook.h>
#include <tqbase2/system/Exception.h>

#include <array>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using support::Answer;
using support::Call;
using support::Entry;
using support::numberOf;
using support::Random;

constexpr std::uint64_t usualRounds = 2;

// Index is the Call.
constexpr std::array<int, 16> ownErrors = {
    SQLITE_CANTOPEN_FULLPATH,
    SQLITE_CANTOPEN,
    SQLITE_IOERR_DELETE,
    SQLITE_IOERR_ACCESS,
    SQLITE_IOERR_READ,
    SQLITE_IOERR_WRITE,
    SQLITE_IOERR_WRITE,
    SQLITE_IOERR_TRUNCATE,
    SQLITE_IOERR_FSYNC,
    SQLITE_IOERR_FSTAT,
    SQLITE_IOERR_LOCK,
    SQLITE_IOERR_UNLOCK,
    SQLITE_IOERR_CHECKRESERVEDLOCK,
    SQLITE_IOERR_SHMMAP,
    SQLITE_IOERR_SHMLOCK,
    SQLITE_IOERR_SHMLOCK,
};

int ownError(Call call) {
    return ownErrors.at(static_cast<std::size_t>(call));
}

bool any(Call) {
    return true;
}

bool takesSpace(Call call) {
    return call == Call::Write || call == Call::Grow;
}

bool writes(Call call) {
    return call == Call::Write;
}

struct Kind {
    const char* name;
    bool (*concerns)(Call);
    bool full;
    bool half;
};

constexpr std::array<Kind, 4> kinds = {{
    {"input/output error", any, false, false},
    {"full disk", takesSpace, true, false},
    {"write that breaks off", writes, false, true},
    {"write that fills the disk", writes, true, true},
}};

struct Fault {
    std::size_t call;  // of the session, counting from 0
    Kind kind;
    bool lasts;
};

/// Fails as it is told, and keeps what it was asked.
class FaultyDisk : public support::Vfs {
public:
    explicit FaultyDisk(std::optional<Fault> planned) : fault(planned) {}

    Answer answer(Call call) override {
        calls.push_back(call);
        if (!fails(call)) {
            return {};
        }
        ++failed;
        return {fault->kind.full ? SQLITE_FULL : ownError(call), fault->kind.half};
    }

    void repair() { fault.reset(); }

    const std::vector<Call>& asked() const { return calls; }

    std::uint64_t failures() const { return failed; }

private:
    bool fails(Call call) const {
        const std::size_t now = calls.size() - 1;
        return fault && (now == fault->call || (fault->lasts && now > fault->call && fault->kind.concerns(call)));
    }

    std::optional<Fault> fault;
    std::vector<Call> calls;
    std::uint64_t failed = 0;
};

enum class Step { Add, Read, Clear, Reopen };

struct Script {
    std::uint32_t capacity;
    std::vector<Step> steps;
};

/// Fills the logbooks, so that records are dropped and the log is written back, and goes on with everything there is.
Script someScript(Random& random) {
    constexpr std::array<Step, 7> choice = {Step::Add,  Step::Add,   Step::Add,   Step::Add,
                                            Step::Read, Step::Clear, Step::Reopen};
    Script script{static_cast<std::uint32_t>(2 + support::upTo(random, 1)), {}};
    script.steps.assign(3, Step::Add);
    script.steps.insert(script.steps.end(), {Step::Read, Step::Clear, Step::Add, Step::Reopen, Step::Add});
    script.steps.push_back(choice.at(static_cast<std::size_t>(support::upTo(random, choice.size() - 1))));
    return script;
}

/// What went on over all sessions.
struct Figures {
    std::uint64_t calls = 0;
    std::uint64_t faults = 0;
    std::uint64_t thrown = 0;
    std::uint64_t unnoticed = 0;
    std::uint64_t acknowledged = 0;
    std::int64_t unacknowledged = 0;
    support::Losses losses;
};

/// Real logbooks that keep few records.
class SmallDatabases : public lgb::DatabaseFactory {
public:
    SmallDatabases(std::filesystem::path logbooks, std::uint32_t records)
        : files(std::move(logbooks)), capacity(records) {}

    std::unique_ptr<lgb::IDatabase> create(const char* name, std::uint32_t first, std::uint32_t) const override {
        return files.create(name, first, capacity);
    }

private:
    standalone::SqliteDatabaseFactory files;
    std::uint32_t capacity;
};

/// One of the two logbooks.
struct Book {
    Book(const char* called, lgb::ILogbook& (lgb::ZelLogbook::*its)(), std::size_t capacity)
        : name(called), get(its), ledger(capacity) {}

    const char* name;
    lgb::ILogbook& (lgb::ZelLogbook::*get)();
    support::Ledger ledger;
};

/// Works through a script on a disk that may fail.
class Session {
public:
    Session(const Script& planned, const std::optional<Fault>& fault, support::Failures& seen, Figures& counted)
        : script(planned),
          disk(fault),
          failures(seen),
          figures(counted),
          books{{{"lgbCustomer", &lgb::ZelLogbook::customer, planned.capacity},
                 {"lgbService", &lgb::ZelLogbook::service, planned.capacity}}} {
        if (fault) {
            context = std::string(fault->kind.name) + (fault->lasts ? " from call " : " at call ") +
                      std::to_string(fault->call);
        }
    }

    void work() {
        constexpr int stepsUntilRepair = 3;
        int stepsWithFaults = 0;
        for (const Step step : script.steps) {
            const std::uint64_t before = disk.failures();
            perform(step);
            stepsWithFaults += disk.failures() > before ? 1 : 0;
            if (stepsWithFaults == stepsUntilRepair) {
                disk.repair();
            }
        }
    }

    /// The disk is well: everything works at once, and once more when the logbooks are opened again.
    void goOn() {
        disk.repair();
        perform(Step::Add);
        perform(Step::Read);
        perform(Step::Reopen);
        for (const Book& book : books) {
            const std::string integrity = support::integrityOf(standalone::logbookFile(folder.path(), book.name));
            failures.expect(integrity == "ok", context + ": " + book.name + ": " + integrity);
        }
        perform(Step::Add);
        perform(Step::Read);
    }

    const FaultyDisk& usedDisk() const { return disk; }

    bool hasThrown() const { return threw; }

private:
    void perform(Step step) {
        if (step == Step::Reopen) {
            zel.reset();
        }
        if (!zel && !attempt("open", [&] { open(); })) {
            return;
        }
        for (Book& book : books) {
            const std::string what = book.name;
            if (step == Step::Add) {
                attempt("add to " + what, [&] { add(book); });
            } else if (step == Step::Clear) {
                attempt("clear " + what, [&] { clear(book); });
            } else if (step == Step::Read) {
                attempt("read " + what, [&] { read(book); });
            } else {
                attempt("read reopened " + what, [&] { book.ledger.settle(read(book)); });
            }
        }
    }

    void open() { zel.emplace(SmallDatabases(folder.path(), script.capacity), lgb::LogbookFactory()); }

    lgb::ILogbook& logbook(const Book& book) { return (*zel.*book.get)(); }

    void add(Book& book) {
        logbook(book).add(support::recordOf(book.ledger.adding()));
        book.ledger.added();
        ++figures.acknowledged;
    }

    void clear(Book& book) {
        book.ledger.clearing();
        logbook(book).clear();
        book.ledger.cleared();
    }

    std::vector<Entry> read(Book& book) {
        std::vector<Entry> stored = logbook(book).fetchAll();
        const support::Losses losses = book.ledger.audit(stored);
        figures.losses += losses;
        failures.expect(losses.all() == 0, context + ": " + book.name + ": " + losses.text());
        figures.unacknowledged += book.ledger.confirm(stored);
        readPage(book, stored);
        return stored;
    }

    void readPage(const Book& book, const std::vector<Entry>& stored) {
        const std::vector<Entry> page = logbook(book).fetch(1, 1);
        const bool isNext =
            stored.size() > 1 ? page.size() == 1 && numberOf(page.front()) == numberOf(stored[1]) : page.empty();
        failures.expect(isNext, context + ": " + book.name + ": a page is not what stands there");
    }

    /// Whether it was done. It may fail only if the disk did, and must say where.
    template <typename Operation>
    bool attempt(const std::string& what, Operation operation) {
        const std::uint64_t before = disk.failures();
        try {
            operation();
            return true;
        } catch (const tqbase2::system::Exception& exception) {
            expectTelling(what, exception.what(), disk.failures() > before);
        } catch (const std::exception& exception) {
            failures.expect(false, context + ": " + what + ": not the platform's exception: " + exception.what());
        }
        threw = true;
        ++figures.thrown;
        return false;
    }

    void expectTelling(const std::string& what, const std::string& message, bool diskFailed) {
        failures.expect(diskFailed, context + ": " + what + " failed on a disk that is well: " + message);
        bool named = false;
        for (const Book& book : books) {
            const std::string database = standalone::logbookFile(folder.path(), book.name).string();
            for (const char* const beside : {": ", "-making: "}) {
                named =
                    named || (message.rfind(database + beside, 0) == 0 && message.size() > (database + beside).size());
            }
        }
        failures.expect(named, context + ": " + what + ": without file or reason: " + message);
    }

    const Script& script;
    support::TemporaryFolder folder;
    FaultyDisk disk;
    support::Failures& failures;
    Figures& figures;
    std::array<Book, 2> books;
    std::string context = "no fault";
    bool threw = false;
    std::optional<lgb::ZelLogbook> zel;
};

/// The calls of a session without a fault, which tell what there is to fail.
std::vector<Call> callsOf(const Script& script, support::Failures& failures, Figures& figures) {
    Session session(script, std::nullopt, failures, figures);
    session.work();
    std::vector<Call> calls = session.usedDisk().asked();
    session.goOn();
    return calls;
}

void runWith(const Fault& fault, const Script& script, support::Failures& failures, Figures& figures) {
    Session session(script, fault, failures, figures);
    session.work();
    session.goOn();
    failures.expect(session.usedDisk().failures() > 0, "a call was not made again: the session is another each time");
    ++figures.faults;
    figures.unnoticed += session.hasThrown() ? 0U : 1U;
}

void failEachCall(const Script& script, std::size_t step, support::Failures& failures, Figures& figures) {
    const std::vector<Call> calls = callsOf(script, failures, figures);
    for (std::size_t call = 0; call < calls.size(); call += step) {
        ++figures.calls;
        for (const Kind& kind : kinds) {
            if (kind.concerns(calls[call])) {
                runWith({call, kind, false}, script, failures, figures);
                runWith({call, kind, true}, script, failures, figures);
            }
        }
    }
}

int run(int argc, char** argv) {
    std::uint64_t step = 1;
    const support::Extent extent =
        support::extentOf(argc, argv, usualRounds, {{"--every", &step, "fail only each n-th call"}});
    Random random(extent.seed);
    support::Failures failures;
    Figures figures;
    for (std::uint64_t round = 0; round < extent.rounds; ++round) {
        failEachCall(someScript(random), static_cast<std::size_t>(step), failures, figures);
    }
    return failures.conclude(
        "disk faults: " + std::to_string(figures.faults) + " faults at " + std::to_string(figures.calls) + " calls, " +
        std::to_string(figures.thrown) + " operations failed, " + std::to_string(figures.unnoticed) +
        " faults without any, " + std::to_string(figures.acknowledged) + " records acknowledged, " +
        std::to_string(figures.unacknowledged) + " stored unacknowledged, " + figures.losses.text());
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
