// Readers beside a logbook at work: one process adds without pause, another opens it, adds and closes it again, at
// times a third one clears. Whoever reads meanwhile, within a program or by the tool's commands, is served without a
// word of complaint: with whole records that follow one another, the newest that was acknowledged before among them.
// And nobody who reads slowly holds up those who write.

#include "Check.h"
#include "Companion.h"
#include "NumberedLogbook.h"
#include "TemporaryFolder.h"
#include "tool.h"

#include <standalone/LogbookReader.h>

#include <SQLiteCpp/Database.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <regex>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
using support::Entry;
using support::Failures;
using support::Place;

constexpr std::uint32_t capacity = 1000;
constexpr const char* name = "lgbService";
constexpr auto newestOfAll = std::numeric_limits<std::int64_t>::max();

/// What writers and readers know of one another.
struct Shared {
    std::atomic<bool> done{false};
    std::atomic<std::int64_t> added{0};  // acknowledged, by all; the number of a record is no lower
    std::atomic<std::int64_t> clearsBegun{0};
    std::atomic<std::int64_t> clears{0};        // done
    std::atomic<std::int64_t> addedAtClear{0};  // those that were being added at that moment left out
};

void add(const support::NumberedLogbook& open, Shared& shared) {
    open.logbook->add(support::recordOf(shared.added + 1));
    ++shared.added;
}

void addWithoutPause(const Place& place, Shared& shared) {
    const support::NumberedLogbook open(place);
    while (!shared.done) {
        add(open, shared);
    }
}

void comeAndGo(const Place& place, Shared& shared) {
    while (!shared.done) {
        add(support::NumberedLogbook(place), shared);
    }
}

void clearAgainAndAgain(const Place& place, Shared& shared) {
    const support::NumberedLogbook open(place);
    while (!shared.done) {
        usleep(20000);
        ++shared.clearsBegun;
        open.logbook->clear();
        shared.addedAtClear = shared.added.load();
        ++shared.clears;
    }
}

/// What a reader got to see, newest first.
struct Seen {
    std::vector<std::int64_t> numbers;
    std::size_t torn = 0;
    std::string complaint;
};

/// A text as recordOf makes it begins with its number.
bool isWhole(const std::string& time, const Json::Value& parameters) {
    const Entry added = support::recordOf(std::stoll(time));
    return added.timestamp.text == time &&
           tqbase2::system::JsonUtility::toJsonValue(added.details.params) == parameters;
}

std::string complaintOf(const support::Outcome& outcome) {
    return (outcome.exitCode == 0 ? "" : "exit code " + std::to_string(outcome.exitCode) + ' ') + outcome.errors;
}

Seen shown(const support::Outcome& outcome) {
    Seen seen;
    seen.complaint = complaintOf(outcome);
    if (seen.complaint.empty()) {
        for (const Json::Value& line : support::jsonLinesOf(outcome.output)) {
            seen.numbers.push_back(line["number"].asInt64());
            seen.torn += isWhole(line["timeText"].asString(), line["parameters"]) ? 0U : 1U;
        }
    }
    return seen;
}

Seen show(const std::filesystem::path& folder) {
    return shown(support::run(support::toolCommand(folder, "show service --all --format jsonl")));
}

Seen showPage(const std::filesystem::path& folder) {
    return shown(support::run(support::toolCommand(folder, "show service --count 20 --format jsonl")));
}

/// An export tells no numbers.
Seen exportAll(const std::filesystem::path& folder) {
    const support::Outcome outcome = support::run(support::toolCommand(folder, "export service"));
    Seen seen;
    seen.complaint = complaintOf(outcome);
    for (const Json::Value& line : support::jsonLinesOf(outcome.output)) {
        const Json::Value entry = tqbase2::system::JsonUtility::toJsonValue(line["entry"].asString());
        const Json::Value params = tqbase2::system::JsonUtility::toJsonValue(entry["details"]["params"].asString());
        seen.torn += isWhole(line["time"].asString(), params) ? 0U : 1U;
    }
    return seen;
}

Seen report(const std::filesystem::path& folder) {
    const support::TemporaryFolder pages;
    const std::string page = pages / "report.html";
    Seen seen;
    seen.complaint = complaintOf(support::run(support::toolCommand(folder, "report --output " + page)));
    const std::string text = support::contentOf(page);
    const std::regex row("<td class=\"number\">([0-9]+)</td>");
    for (std::sregex_iterator at(text.begin(), text.end(), row), end; at != end; ++at) {
        seen.numbers.push_back(std::stoll((*at)[1]));
    }
    return seen;
}

Seen check(const std::filesystem::path& folder) {
    return {{}, 0, complaintOf(support::run(support::toolCommand(folder, "check service")))};
}

Seen readBackwards(const std::filesystem::path& folder) {
    standalone::LogbookReader reader(standalone::logbookFile(folder, name));
    Seen seen;
    for (std::int64_t next = newestOfAll; next > 0;) {
        const auto records = reader.before(next, 100);
        for (const auto& record : records) {
            seen.numbers.push_back(record.number);
            seen.torn += record.intact ? 0U : 1U;
        }
        next = records.empty() ? 0 : records.back().number;
    }
    return seen;
}

Seen readForwards(const std::filesystem::path& folder) {
    standalone::LogbookReader reader(standalone::logbookFile(folder, name));
    Seen seen;
    for (const auto& record : reader.after(std::max<std::int64_t>(reader.count() - 1, 0), capacity)) {
        seen.numbers.insert(seen.numbers.begin(), record.number);
        seen.torn += record.intact ? 0U : 1U;
    }
    return seen;
}

Seen lookForDamage(const std::filesystem::path& folder) {
    Seen seen;
    for (const std::string& damage : standalone::structuralDamage(standalone::logbookFile(folder, name))) {
        seen.complaint += damage + ' ';
    }
    return seen;
}

struct WayToRead {
    const char* name;
    Seen (*read)(const std::filesystem::path& folder);
    bool tellsNumbers;
};

// clang-format off
constexpr WayToRead readers[] = {
    {"show --all",          show,          true},
    {"before",              readBackwards, true},
    {"check",               check,         false},
    {"show --count",        showPage,      true},
    {"after",               readForwards,  true},
    {"export",              exportAll,     false},
    {"structuralDamage",    lookForDamage, false},
    {"report",              report,        true},
};

// clang-format on

/// Whether records that were acknowledged by then are still there.
bool hasRecords(const Shared& shared, std::int64_t added, std::int64_t clears) {
    constexpr std::int64_t atOnce = 2;  // adding
    return shared.clearsBegun == clears && added > shared.addedAtClear + atOnce;
}

/// Reads once and holds what is seen against what was known before.
void readOnce(const WayToRead& reader, const std::filesystem::path& folder, const Shared& shared, Failures& failures) {
    const std::string where = std::string(reader.name) + ": ";
    const std::int64_t added = shared.added;
    const std::int64_t clears = shared.clears;
    try {
        const Seen seen = reader.read(folder);
        failures.expect(seen.complaint.empty(), where + seen.complaint);
        failures.expect(seen.torn == 0, where + std::to_string(seen.torn) + " records not whole");
        failures.expect(support::countDown(seen.numbers), where + "records are missing in between");
        const bool isNewest = seen.numbers.empty() ? !hasRecords(shared, added, clears) : seen.numbers.front() >= added;
        failures.expect(!reader.tellsNumbers || isNewest || !seen.complaint.empty(),
                        where + "the newest is " +
                            (seen.numbers.empty() ? "missing" : std::to_string(seen.numbers.front())) + ", but " +
                            std::to_string(added) + " were acknowledged");
    } catch (const std::exception& exception) {
        failures.expect(false, where + exception.what());
    }
}

/// So many readers, one after the other.
void readBeside(const Place& place, std::uint64_t rounds, const Shared& shared, Failures& failures) {
    for (std::uint64_t round = 0; round < rounds; ++round) {
        readOnce(readers[round % std::size(readers)], place.folder, shared, failures);
    }
}

/// Beside those who write without pause.
void readBesideWriters(bool areCleared, std::uint64_t rounds, Failures& failures) {
    const support::TemporaryFolder folder;
    const Place place{folder.path(), capacity, name};
    const support::SharedMemory<Shared> shared;
    add(support::NumberedLogbook(place), *shared);
    support::Companion busy([&](Failures&) { addWithoutPause(place, *shared); });
    support::Companion visitor([&](Failures&) { comeAndGo(place, *shared); });
    support::Companion clearer([&](Failures&) {
        if (areCleared) {
            clearAgainAndAgain(place, *shared);
        }
    });
    readBeside(place, rounds, *shared, failures);
    shared->done = true;
    const bool allWrote = busy.succeeds() && visitor.succeeds() && clearer.succeeds();
    failures.expect(allWrote, "a writer failed");
}

/// Nobody has the logbook open when the reader begins; then somebody has, and is done.
void readWhileOneBegins(std::uint64_t rounds, Failures& failures) {
    const support::TemporaryFolder folder;
    const Place place{folder.path(), capacity, name};
    const support::SharedMemory<Shared> shared;
    add(support::NumberedLogbook(place), *shared);
    for (std::uint64_t round = 0; round < rounds; ++round) {
        if (round % 2 == 0) {
            std::filesystem::remove(standalone::logbookFile(place.folder, name).string() + "-shm");
        }
        support::Companion writer([&](Failures&) {
            usleep(static_cast<useconds_t>(round % 50 * 100));
            const support::NumberedLogbook open(place);
            for (int i = 0; i < 20; ++i) {
                add(open, *shared);
            }
        });
        readOnce(readers[round % std::size(readers)], place.folder, *shared, failures);
        failures.expect(writer.succeeds(), "a writer failed");
    }
}

/// @return whether somebody else holds up what empties the log
bool isLogHeldUp(const std::string& database) {
    SQLite::Database connection(database, SQLite::OPEN_READWRITE);
    return connection.execAndGet("PRAGMA wal_checkpoint(TRUNCATE)").getInt() != 0;
}

/// Who waits for a pipe holds up nobody.
void readSlowly(Failures& failures) {
    const support::TemporaryFolder folder;
    const Place place{folder.path(), capacity, name};
    const std::string database = standalone::logbookFile(place.folder, name);
    const support::SharedMemory<Shared> shared;
    const support::NumberedLogbook open(place);
    for (std::uint32_t i = 0; i < capacity; ++i) {
        add(open, *shared);
    }
    for (const char* const command : {"show service --all --format jsonl", "export service", "show service --all"}) {
        support::SlowlyRead reader(support::toolCommand(place.folder, command));
        reader.readSome();
        for (int i = 0; i < 5; ++i) {
            usleep(10000);
            add(open, *shared);
            failures.expect(!isLogHeldUp(database), std::string(command) + " holds up the log while it waits");
        }
        const support::Outcome outcome = reader.end(100us);
        failures.expect(outcome.exitCode == 0, std::string(command) + ": " + complaintOf(outcome));
    }
    SQLite::Database foreign(database, SQLite::OPEN_READONLY);
    foreign.exec("BEGIN");
    foreign.execAndGet("SELECT count(*) FROM record");
    add(open, *shared);
    failures.expect(isLogHeldUp(database), "who holds up the log is not noticed");
}

int run(int argc, char** argv) {
    const support::Extent extent = support::extentOf(argc, argv, 150);
    Failures failures;
    const std::uint64_t part = (extent.rounds + 2) / 3;
    readBesideWriters(false, part, failures);
    readBesideWriters(true, part, failures);
    readWhileOneBegins(part, failures);
    readSlowly(failures);
    return failures.conclude("readers: " + std::to_string(3 * part) + " beside writers");
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
