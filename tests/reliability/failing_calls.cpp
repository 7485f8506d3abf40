// System calls fail: each one that is made while a logbook is made or healed, opened, read, added to and closed, once
// or from then on. An operation then throws, naming the file, or has done its work; what fails passes for no damage.
// When calls work again, the logbook holds what an undisturbed process would have found and all that was acknowledged,
// recording goes on, and nothing but what was damaged before has been set aside.

#include "CapturedErrors.h"
#include "Check.h"
#include "Hurry.h"
#include "calls.h"
#include "random.h"
#include "scenes.h"

#include <standalone/LogbookReader.h>
#include <standalone/errors.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using support::FileCall;
using support::Random;
using support::Stage;

constexpr std::uint64_t usualEvery = 100;
constexpr std::ptrdiff_t mostRare = 20;

struct Kind {
    const char* name;
    int error;
    bool isHalf;
    std::vector<FileCall> concerned;
    bool mayLast;  // what passes by itself is waited for
};

const std::vector<Kind>& kinds() {
    static const std::vector<FileCall> names = {FileCall::Open, FileCall::OpenToWrite, FileCall::MakeFolder,
                                                FileCall::Unlink, FileCall::Rename};
    static const std::vector<Kind> all = {
        {"input/output error",
         EIO,
         false,
         {FileCall::Open, FileCall::OpenToWrite, FileCall::Read, FileCall::Write, FileCall::Truncate, FileCall::Allot,
          FileCall::Sync, FileCall::Unlink, FileCall::Rename, FileCall::MakeFolder, FileCall::RandomBytes,
          FileCall::Status},
         true},
        {"write that breaks off", EIO, true, {FileCall::Write}, true},
        {"full disk", ENOSPC, false, {FileCall::Write, FileCall::Allot, FileCall::MakeFolder, FileCall::Rename}, true},
        {"write that fills the disk", ENOSPC, true, {FileCall::Write}, true},
        {"missing right", EACCES, false, names, true},
        {"read-only medium",
         EROFS,
         false,
         {FileCall::OpenToWrite, FileCall::MakeFolder, FileCall::Unlink, FileCall::Rename},
         true},
        {"too many files", EMFILE, false, {FileCall::Open, FileCall::OpenToWrite}, true},
        {"file system that can't set space aside", EOPNOTSUPP, false, {FileCall::Allot}, true},
        {"system that can't set space aside", ENOSYS, false, {FileCall::Allot}, true},
        {"interruption", EINTR, false, {FileCall::Read, FileCall::Write, FileCall::Allot, FileCall::Lock}, false},
        {"file system whose folders need no syncs", EINVAL, false, {FileCall::Sync}, false},
        {"file system that renames simply", EINVAL, false, {FileCall::Rename}, true},
        {"lock that another has", EAGAIN, false, {FileCall::Lock}, false},
        {"lock that can't be had", EIO, false, {FileCall::Lock}, false},
    };
    return all;
}

struct Fault {
    std::size_t call;  // counting from 0
    const Kind* kind;
    bool lasts;

    bool concerns(FileCall made) const {
        return std::find(kind->concerned.begin(), kind->concerned.end(), made) != kind->concerned.end();
    }
};

/// What the calls are, and which of them fail.
struct Calls {
    std::vector<FileCall> made;
    Fault fault{0, nullptr, false};
    std::uint64_t failed = 0;
};

Calls calls;

support::Fate fateOf(FileCall call) {
    const std::size_t now = calls.made.size();
    calls.made.push_back(call);
    const Fault& fault = calls.fault;
    const bool fails =
        fault.kind != nullptr && (fault.lasts ? now >= fault.call : now == fault.call) && fault.concerns(call);
    if (!fails) {
        return {};
    }
    ++calls.failed;
    return {fault.kind->error, 0, fault.kind->isHalf};
}

struct Figures {
    std::uint64_t calls = 0;
    std::uint64_t faults = 0;
    std::uint64_t thrown = 0;
    std::uint64_t unnoticed = 0;
    std::uint64_t missed = 0;  // the id of a logbook decides how long its numbers are, and so how many calls are made
    support::Aftermath aftermath;
};

struct Seen {
    Figures figures;
    support::Failures failures;
    support::CapturedErrors errors;
};

/// Everything that is done with a logbook, while calls fail.
class Session {
public:
    Session(const Stage& on, const Fault& planned, support::Failures& seen)
        : stage(on), fault(planned), failures(seen) {}

    void work() {
        stage.reset();
        calls = {{}, fault, 0};
        support::setFates(fateOf);
        record();
        read();
        database.reset();
        read();
        record();
        database.reset();
        support::setFates(nullptr);
    }

    const std::vector<support::Added>& addedRecords() const { return added; }

    std::uint64_t thrownInAll() const { return thrown; }

    std::string title() const {
        return fault.kind == nullptr ? "no fault"
                                     : fault.kind->name + std::string(fault.lasts ? " from call " : " at call ") +
                                           std::to_string(fault.call);
    }

private:
    void record() {
        attempt("open", [&] { database = stage.open(); });
        if (database == nullptr) {
            return;
        }
        for (int time = 0; time < 2; ++time) {
            added.push_back({"record " + std::to_string(added.size()) + " of a session", false});
            attempt("add", [&] {
                database->add(added.back().text, {});
                added.back().isAcknowledged = true;
            });
        }
        attempt("fetch", [&] { expectAcknowledged(support::textsOf(*database)); });
    }

    void read() {
        attempt("read", [&] {
            standalone::LogbookReader reader(stage.database());
            const auto records = reader.before(INT64_MAX, 1000);
            expect(stage.isDamaged() ||
                       std::all_of(records.begin(), records.end(), [](const auto& record) { return record.intact; }),
                   "a record that is not intact is read");
            reader.description();
        });
        attempt("examine", [&] {
            const auto damage = standalone::structuralDamage(stage.database());
            expect(stage.isDamaged() || damage.empty(),
                   "a whole file is called damaged: " + (damage.empty() ? "" : damage.front()));
        });
    }

    void expectAcknowledged(const support::Texts& texts) {
        for (const support::Added& record : added) {
            expect(!record.isAcknowledged || std::find(texts.begin(), texts.end(), record.text) != texts.end(),
                   record.text + " is not there");
        }
    }

    void expect(bool holds, const std::string& what) {
        failures.expect(holds, stage.title() + ", " + title() + ": " + what);
    }

    template <typename Operation>
    void attempt(const std::string& what, Operation operation) {
        const std::uint64_t before = calls.failed;
        try {
            operation();
        } catch (const standalone::DatabaseError& error) {
            ++thrown;
            expectTelling(what, error, calls.failed > before);
        } catch (const std::exception& exception) {
            expect(false, what + ": not the platform's exception: " + exception.what());
        }
    }

    void expectTelling(const std::string& what, const standalone::DatabaseError& error, bool callsFailed) {
        using standalone::Failure;
        const std::string message = error.what();
        // What is damaged, or was written in half, may need somebody who may write before it can be read.
        const bool awaitsWriter =
            (what == "read" || what == "examine") && (stage.isDamaged() || fault.lasts || fault.kind->isHalf);
        expect(callsFailed || awaitsWriter || error.kind() == Failure::Missing,
               what + " fails without a reason: " + message);
        const std::string named = message.substr(0, message.find(": "));
        const bool isFolderAbove = stage.place().string().rfind(named, 0) == 0;
        const bool isNamed =
            message.rfind(stage.place().parent_path().string(), 0) == 0 || isFolderAbove || named == "/dev/urandom";
        expect(isNamed, what + ": names no file: " + message);
        const bool blamesFile =
            error.kind() == Failure::Damaged || error.kind() == Failure::Foreign || error.kind() == Failure::Newer;
        expect(stage.isDamaged() || !blamesFile, what + ": blames the file: " + message);
    }

    const Stage& stage;
    Fault fault;
    support::Failures& failures;
    std::unique_ptr<lgb::IDatabase> database;
    std::vector<support::Added> added;
    std::uint64_t thrown = 0;
};

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

void runWith(const Fault& fault, const Stage& stage, Seen& seen) {
    const std::ptrdiff_t before = openDescriptors();
    Session session(stage, fault, seen.failures);
    seen.errors.take();
    session.work();
    // Without room for a copy, recording goes on in the damaged file.
    const bool mayLack = seen.errors.take().find("; the logbook can't be healed, ") != std::string::npos;
    stage.look(session.title(), session.addedRecords(), seen.figures.aftermath, seen.failures, mayLack);
    seen.failures.expect(openDescriptors() == before, stage.title() + ", " + session.title() + ": a file is left open");
    ++seen.figures.faults;
    seen.figures.missed += calls.failed == 0 ? 1U : 0U;
    seen.figures.thrown += session.thrownInAll();
    seen.figures.unnoticed += session.thrownInAll() == 0 ? 1U : 0U;
}

void failEachCall(const Stage& stage, std::size_t first, std::size_t every, Seen& seen) {
    Session(stage, {0, nullptr, false}, seen.failures).work();
    const std::vector<FileCall> made = calls.made;
    std::map<FileCall, std::size_t> times;
    for (std::size_t call = 0; call < made.size(); ++call) {
        const auto ofItsKind = std::count(made.begin(), made.end(), made[call]);
        const bool isRare = ofItsKind <= mostRare;
        if (!isRare && (times[made[call]]++ + first) % every != 0) {
            continue;
        }
        ++seen.figures.calls;
        for (const Kind& kind : kinds()) {
            const Fault once{call, &kind, false};
            if (once.concerns(made[call])) {
                runWith(once, stage, seen);
                if (kind.mayLast) {
                    runWith({call, &kind, true}, stage, seen);
                }
            }
        }
    }
}

int run(int argc, char** argv) {
    std::uint64_t every = usualEvery;
    bool isQuick = false;
    const support::Extent extent = support::extentOf(
        argc, argv, 1,
        {{"--every", &every, "fail only each n-th call of a kind, unless it is rare"},
         {"--quick", &isQuick, "leave out damaged logbooks of many records, which take long to heal"}});
    const support::Hurry hurry;
    Random random(extent.seed);
    Seen seen;
    for (const support::Scene& scene : support::scenes()) {
        if (isQuick && !scene.isSmall()) {
            continue;
        }
        const Stage stage(scene);
        for (std::uint64_t round = 0; round < extent.rounds; ++round) {
            const auto first = support::upTo(random, static_cast<std::int64_t>(every) - 1);
            failEachCall(stage, static_cast<std::size_t>(first), static_cast<std::size_t>(every), seen);
        }
    }
    const Figures& figures = seen.figures;
    constexpr std::uint64_t mostMissed = 100;  // of one each
    seen.failures.expect(figures.missed * mostMissed <= figures.faults,
                         std::to_string(figures.missed) + " faults were not reached again");
    const auto number = [](std::uint64_t value) { return std::to_string(value); };
    return seen.failures.conclude(
        "failing calls: " + number(figures.faults) + " faults at " + number(figures.calls) + " calls, " +
        number(figures.thrown) + " operations failed, " + number(figures.unnoticed) + " faults without any, " +
        number(figures.missed) + " not reached, " + number(figures.aftermath.lost) + " lost, " +
        number(figures.aftermath.strange) + " with other records, " + number(figures.aftermath.leftBehind) +
        " with files left behind, " + number(figures.aftermath.refused) + " can't record");
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
