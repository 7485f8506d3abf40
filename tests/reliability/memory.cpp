// Memory runs out: each operation of the library, and a whole session on files, is tried with its n-th request for
// memory refused, and with all from the n-th on, for every n that it gets to. It then says so or gives all that it was
// to give; stores and announces all or nothing; leaks nothing; and works when there is memory again.
//
// Besides std::bad_alloc it may throw Json::RuntimeError, which is jsoncpp's word for it; where JSON text is read what
// the platform throws for text that can't be; and from a logbook standalone::DatabaseError. The one thing that may be
// missing from a page without an exception is an entry that could not be read, when the diagnostic log says so.

#include "CapturedErrors.h"
#include "Check.h"
#include "Shortage.h"
#include "TemporaryFolder.h"
#include "lines.h"
#include "textOperations.h"

#include <lgb/ZelLogbook.h>
#include <standalone/SqliteDatabaseFactory.h>
#include <standalone/errors.h>

#include <json/value.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

// Power stays on, and thousands of sessions take a minute instead of an hour.
extern "C" __attribute__((visibility("default"))) int fdatasync(int) {
    return 0;
}

namespace {

using Lines = std::vector<std::string>;
using tqbase2::nsa::zel::enums::LogbookEntryType;
using tqbase2::nsa::zel::logbook::Entry;

/// What an operation needs, and so what may fail for want of memory in words of its own.
enum class Needs { Nothing, JsonText, Database };

bool saysSo(const std::exception& exception, Needs needs) {
    return dynamic_cast<const std::bad_alloc*>(&exception) != nullptr ||
           dynamic_cast<const Json::RuntimeError*>(&exception) != nullptr ||
           (needs == Needs::JsonText && dynamic_cast<const standalone::JsonError*>(&exception) != nullptr) ||
           (needs == Needs::Database && dynamic_cast<const standalone::DatabaseError*>(&exception) != nullptr);
}

/// Which requests for memory are refused, from the moment on when the operation under trial starts.
struct Refused {
    std::uint64_t first;
    std::uint64_t last;
};

std::string title(const std::string& operation, Refused requests) {
    if (requests.first == support::MemorySupply::never) {
        return operation + ", with memory: ";
    }
    return operation + ", without request " + std::to_string(requests.first) +
           (requests.last > requests.first ? " and all that follow: " : ": ");
}

/// One try of one operation. What is around its `run` has all the memory it wants.
class Attempt {
public:
    /// @param diagnostics takes the diagnostic log
    Attempt(std::string operation, Refused requests, support::CapturedErrors& diagnostics)
        : name(std::move(operation)), refused(requests), log(diagnostics) {}

    /// @param operation gives what it has to give, line by line
    /// @return whether it came to its end
    template <typename Operation>
    bool run(Needs needs, Operation operation) {
        try {
            log.take();
            const support::Shortage shortage(refused.first, refused.last);
            lines = operation();
            completed = true;
        } catch (const std::exception& exception) {
            expect(saysSo(exception, needs), std::string(typeid(exception).name()) + ": " + exception.what());
        }
        text = log.take();
        return completed;
    }

    /// What the operation wrote into the diagnostic log.
    const std::string& logged() const { return text; }

    /// How often the diagnostic log told of something left out.
    std::size_t excuses() const {
        return support::occurrences(text, " warning libTqZelLogbook: ") +
               support::occurrences(text, " error libTqZelLogbook: ");
    }

    /// When it came to its end: it gave what another attempt gave that had memory, or told of each line left out.
    void expectWhole(const Attempt& whole) {
        const bool excused = support::isSelection(lines, whole.lines) &&
                             whole.lines.size() - lines.size() <= excuses() - whole.excuses();
        if (completed && !excused) {
            expectSame(lines, whole.lines, "gives without a word");
        }
    }

    void expectSame(const Lines& found, const Lines& expected, const std::string& where) {
        std::string holds = where + ":";
        for (const std::string& line : found) {
            holds += "\n  " + line;
        }
        expect(found == expected, holds);
    }

    void expect(bool holds, const std::string& what) {
        if (!holds) {
            complaints.push_back(title(name, refused) + what);
        }
    }

    Lines complaints;

private:
    std::string name;
    Refused refused;
    support::CapturedErrors& log;
    std::string text;
    Lines lines;
    bool completed = false;
};

/// One operation under trial: it prepares what it needs, runs it in an attempt, and looks at what is left.
struct Trial {
    std::string name;
    std::function<void(Attempt&)> run;
};

std::vector<Trial> textTrials() {
    std::vector<Trial> trials;
    for (const texts::Operation& operation : texts::operations) {
        trials.push_back({operation.name, [&operation](Attempt& attempt) {
                              attempt.run(operation.reads == texts::Reads::Json ? Needs::JsonText : Needs::Nothing,
                                          [&] {
                                              Lines lines(1);
                                              lines[0] = operation.run();
                                              return lines[0].empty() ? Lines() : lines;
                                          });
                          }});
    }
    return trials;
}

void tryEntryLog(Attempt& attempt) {
    // The logger gives up a longer line than it has room for, and says that in words of its own.
    const lgb::Entry entry(texts::error, texts::word);
    const bool done = attempt.run(Needs::Nothing, [&] {
        lgb::entryLog(entry);
        return Lines();
    });
    const bool isLogged = attempt.logged().find(lgb::entryStr(entry)) != std::string::npos;
    attempt.expect(isLogged == done, isLogged ? "logged, but failed" : "not logged");
}

enum class Which { Customer, Service };

lgb::ILogbook& select(lgb::ZelLogbook& device, Which which) {
    return which == Which::Customer ? device.customer() : device.service();
}

/// What is stored, and the words in which each logbook shows it; none where it doesn't.
struct Record {
    Entry entry;
    std::string customer;
    std::string service;
};

using Records = std::vector<Record>;

/// Attempts are compared, so all are made at one moment.
Entry stamped(Entry entry) {
    entry.timestamp = {1795255200, 123456789, "2026-11-21 11:00:00 +0100"};
    return entry;
}

Record coded(unsigned int bus) {
    const std::string detail = "(3.1 A, expected 4.8 A)";
    const lgb::Entry event(lgb::code::Code(14, LogbookEntryType::Error),
                           lgb::params::createBusModuleAndService(bus, 3, detail));
    const std::string words = "Setting attenuation failed for amplifier 3 on bus " + std::to_string(bus) + '!';
    return {stamped(lgb::LogbookEntryCreator::create(event)), words, words + ' ' + detail};
}

Record note(const std::string& text) {
    const lgb::code::ServiceCode code(LogbookEntryType::Info);
    return {stamped(lgb::LogbookEntryCreator::createServiceOnly(text, code)), "", text};
}

std::string line(const Entry& entry, const std::string& words) {
    return entry.timestamp.text + ' ' + words;
}

Lines shown(const std::vector<Entry>& entries) {
    Lines lines;
    for (const Entry& entry : entries) {
        lines.push_back(line(entry, entry.description));
    }
    return lines;
}

/// How a logbook is to show records, of which the newest stands last.
Lines shown(const Records& records, Which which) {
    Lines lines;
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        const std::string& words = which == Which::Customer ? record->customer : record->service;
        if (!words.empty()) {
            lines.push_back(line(record->entry, words));
        }
    }
    return lines;
}

std::unique_ptr<lgb::ZelLogbook> open(const std::filesystem::path& folder) {
    return std::make_unique<lgb::ZelLogbook>(standalone::SqliteDatabaseFactory(folder), lgb::LogbookFactory());
}

/// The logbooks in a folder hold some records, and take one more.
void expectUsable(Attempt& attempt, lgb::ZelLogbook& device, Which which, Records stored) {
    lgb::ILogbook& logbook = select(device, which);
    attempt.expectSame(shown(logbook.fetchAll()), shown(stored, which), "holds");
    stored.push_back(coded(4711));
    logbook.add(stored.back().entry);
    attempt.expectSame(shown(logbook.fetchAll()), shown(stored, which), "holds with one more");
}

// Made at first use: until then nothing of this process has used the library.
const Record& event() {
    static const Record record = coded(2);
    return record;
}

const Record& freeText() {
    static const Record record = note("Door of the rack found open");
    return record;
}

template <const Record& (*record)()>
Lines add(lgb::ILogbook& logbook) {
    logbook.add(record().entry);
    return {};
}

template <const Record& (*record)()>
void append(Records& stored) {
    stored.push_back(record());
}

/// An operation of a logbook that holds two records.
struct LogbookOperation {
    const char* name;
    Lines (*run)(lgb::ILogbook& logbook);
    /// What it makes of the records when it is done; null: nothing.
    void (*change)(Records& stored);
};

constexpr LogbookOperation logbookOperations[] = {
    {"add", add<event>, append<event>},
    {"add service-only", add<freeText>, append<freeText>},
    {"clear",
     [](lgb::ILogbook& logbook) {
         logbook.clear();
         return Lines();
     },
     [](Records& stored) { stored.clear(); }},
    {"fetch", [](lgb::ILogbook& logbook) { return shown(logbook.fetch(0, 20)); }, nullptr},
    {"fetchAll", [](lgb::ILogbook& logbook) { return shown(logbook.fetchAll()); }, nullptr},
};

void tryOnLogbook(Attempt& attempt, const LogbookOperation& operation, Which which,
                  const std::filesystem::path& folder) {
    Records stored{coded(1), note("Filter of the left fan cleaned")};
    auto device = open(folder);
    lgb::ILogbook& logbook = select(*device, which);
    logbook.clear();
    for (const Record& each : stored) {
        logbook.add(each.entry);
    }
    int changes = 0;
    logbook.changed.connect([&changes] { ++changes; });

    const bool done = attempt.run(Needs::Database, [&] { return operation.run(logbook); });
    const bool changed = done && operation.change != nullptr;
    attempt.expect(changes == (changed ? 1 : 0), "announces " + std::to_string(changes) + " changes");
    if (changed) {
        operation.change(stored);
    }
    // Another process finds neither half a change nor a lock left behind.
    stored.push_back(coded(3));
    select(*open(folder), which).add(stored.back().entry);
    expectUsable(attempt, *device, which, stored);
}

std::vector<Trial> logbookTrials(const std::filesystem::path& folder) {
    std::vector<Trial> trials;
    for (const Which which : {Which::Customer, Which::Service}) {
        const std::string name = which == Which::Customer ? "customer logbook, " : "service logbook, ";
        for (const LogbookOperation& operation : logbookOperations) {
            trials.push_back({name + operation.name,
                              [=, &operation](Attempt& attempt) { tryOnLogbook(attempt, operation, which, folder); }});
        }
    }
    return trials;
}

/// Opens logbooks that are there, the way a device does that leaves the folder to the environment.
void tryOpening(Attempt& attempt, const std::filesystem::path& folder) {
    const Records stored{coded(1)};
    {
        const auto device = open(folder);
        device->customer().clear();
        device->customer().add(stored[0].entry);
    }
    attempt.run(Needs::Database, [] {
        lgb::ZelLogbook().customer();
        return Lines();
    });
    expectUsable(attempt, *open(folder), Which::Customer, stored);
}

/// What a session on empty folders leaves behind after each of its steps.
struct Session {
    Record error = coded(1);
    Record text = note("Filter of the left fan cleaned");
    Record late = coded(2);
    Records customer[6] = {{}, {error}, {error}, {error}, {error}, {error, late}};
    Records service[6] = {{}, {}, {error}, {error, text}, {}, {}};
};

void append(Lines& lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
}

/// The destructors run without memory as well.
void trySession(Attempt& attempt, const std::filesystem::path& folder) {
    const Session session;
    std::size_t changes = 0;
    std::size_t steps = 0;
    const auto start = [&] {
        auto device = open(folder);
        for (const Which which : {Which::Customer, Which::Service}) {
            select(*device, which).changed.connect([&changes] { ++changes; });
        }
        return device;
    };
    std::filesystem::remove_all(folder);
    attempt.run(Needs::Database, [&] {
        Lines pages;
        auto device = start();
        const auto step = [&](auto operation) {
            operation();
            ++steps;
        };
        step([&] { device->customer().add(session.error.entry); });
        step([&] { device->service().add(session.error.entry); });
        step([&] { device->service().add(session.text.entry); });
        append(pages, shown(device->service().fetch(0, 1)));
        append(pages, shown(device->service().fetch(1, 1)));
        step([&] { device->service().clear(); });
        device.reset();
        device = start();
        step([&] { device->customer().add(session.late.entry); });
        append(pages, shown(device->customer().fetchAll()));
        append(pages, shown(device->service().fetchAll()));
        return pages;
    });
    attempt.expect(changes == steps, "announces " + std::to_string(changes) + " changes of " + std::to_string(steps));
    const auto device = open(folder);
    expectUsable(attempt, *device, Which::Customer, session.customer[steps]);
    expectUsable(attempt, *device, Which::Service, session.service[steps]);
}

/// Where the program stands, for when it is killed.
std::string underway;

void nameAndDie(int signal) {
    if (write(STDOUT_FILENO, underway.data(), underway.size()) >= 0) {
        std::signal(signal, SIG_DFL);
    }
    std::raise(signal);
}

/// Puts trials through shortage after shortage.
class Sweep {
public:
    /// @param diagnostics takes the diagnostic log
    Sweep(support::Extent howMany, support::Failures& seen, support::CapturedErrors& diagnostics)
        : extent(howMany), failures(seen), log(diagnostics) {}

    /// Refuses one request after the other until the operation asks for no more. Those of a long operation are as many
    /// as there are rounds, evenly spread; the seed shifts them.
    void run(const Trial& trial) {
        ++operations;
        const Attempt whole = attempt(trial, nothing);
        const std::uint64_t stride = 1 + support::memorySupply.asked / std::max<std::uint64_t>(1, extent.rounds);
        for (const bool lasting : {false, true}) {
            judge(attempt(trial, nothing), whole);
            live = support::memorySupply.live;
            std::uint64_t first = 1 + extent.seed % stride;
            while (refuse(trial, {first, lasting ? support::MemorySupply::never : first}, whole)) {
                first += stride;
            }
        }
    }

    std::string figures() const {
        return "memory: " + std::to_string(operations) + " operations, " + std::to_string(refusals) +
               " failures injected, leaks " + std::to_string(leaks);
    }

private:
    static constexpr Refused nothing{support::MemorySupply::never, support::MemorySupply::never};

    Attempt attempt(const Trial& trial, Refused requests) {
        Attempt attempt(trial.name, requests, log);
        underway = title(trial.name, requests) + "the end of the program\n";
        try {
            trial.run(attempt);
        } catch (const std::exception& exception) {
            attempt.expect(false, std::string("unusable afterwards: ") + exception.what());
        }
        return attempt;
    }

    void judge(Attempt attempt, const Attempt& whole) {
        attempt.expectWhole(whole);
        for (const std::string& complaint : attempt.complaints) {
            failures.expect(false, complaint);
        }
    }

    /// @return whether anything was refused
    bool refuse(const Trial& trial, Refused requests, const Attempt& whole) {
        const std::int64_t before = live;
        judge(attempt(trial, requests), whole);
        const std::uint64_t refused = support::memorySupply.refused;
        judge(attempt(trial, nothing), whole);  // so that what is kept for the next time is there, and is whole
        live = support::memorySupply.live;
        const std::int64_t leaked = live - before;
        failures.expect(leaked == 0, title(trial.name, requests) + std::to_string(leaked) + " blocks leaked");
        leaks += leaked;
        refusals += refused;
        return refused > 0;
    }

    support::Extent extent;
    support::Failures& failures;
    support::CapturedErrors& log;
    std::int64_t live = 0;
    std::uint64_t operations = 0;
    std::uint64_t refusals = 0;
    std::int64_t leaks = 0;
};

/// What is made once and kept, as nothing is made yet.
int firstUse(Refused requests) {
    try {
        const support::Shortage shortage(requests.first, requests.last);
        lgb::LogbookEntryCreator::create(lgb::Entry(texts::error, lgb::params::createBusModule(1, 3)));
        lgb::entryLog(texts::coded());
        lgb::DescriptionCreator().createText(texts::error, texts::everything);
    } catch (const std::exception& exception) {
        return saysSo(exception, Needs::JsonText) ? 1 : 2;
    }
    return support::memorySupply.refused > 0 ? 1 : 0;
}

/// Lets children use the library for the first time, one for each request, and survive it.
void refuseFirstUse(support::Failures& failures, support::CapturedErrors& log) {
    for (const bool lasting : {false, true}) {
        int status = -1;
        for (std::uint64_t first = 1; status != 0; ++first) {
            const Refused requests{first, lasting ? support::MemorySupply::never : first};
            const pid_t child = fork();
            if (child == 0) {
                _exit(firstUse(requests));
            }
            waitpid(child, &status, 0);
            const bool survived = WIFEXITED(status) && WEXITSTATUS(status) <= 1;
            failures.expect(survived, title("first use", requests) + log.take());
        }
    }
}

int run(int argc, char** argv) {
    const support::Extent extent = support::extentOf(argc, argv, 30);
    const support::TemporaryFolder folder;
    const std::filesystem::path logbooks = folder / "logbooks";
    setenv("TQZEL_LOGBOOK_DIR", logbooks.c_str(), 1);
    setenv("TQZEL_LOG_LEVEL", "1", 1);  // so that making log lines runs out of memory, too

    support::Failures failures;
    support::CapturedErrors log;  // which is the diagnostic log
    refuseFirstUse(failures, log);
    std::signal(SIGABRT, nameAndDie);
    std::signal(SIGSEGV, nameAndDie);
    Sweep sweep(extent, failures, log);
    for (const Trial& trial : textTrials()) {
        sweep.run(trial);
    }
    sweep.run({"entryLog", tryEntryLog});
    for (const Trial& trial : logbookTrials(logbooks)) {
        sweep.run(trial);
    }
    sweep.run({"opening", [&](Attempt& attempt) { tryOpening(attempt, logbooks); }});
    sweep.run({"session", [&](Attempt& attempt) { trySession(attempt, logbooks); }});
    return failures.conclude(sweep.figures());
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
