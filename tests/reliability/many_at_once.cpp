// Writers, readers, somebody who clears, and slots that fetch, connect and disconnect, all at once: on one object, on
// an object for each thread over the same files, and in two processes. No record and no notification may get lost, and
// everything must come to its end. The preset `thread` runs it under ThreadSanitizer.

#include "Check.h"
#include "TemporaryFolder.h"

#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>
#include <lgb/ZelLogbook.h>
#include <standalone/SqliteDatabaseFactory.h>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Entry = tqbase2::nsa::zel::logbook::Entry;

constexpr std::uint64_t usualRounds = 3;
constexpr std::int64_t writers = 3;
constexpr std::int64_t recordsOfEach = 30;
constexpr int clears = 10;
constexpr std::uint32_t customerCapacity = 50;

/// Counted by all threads of all processes.
struct Tally {
    std::atomic<std::uint64_t> adds{0};
    std::atomic<std::uint64_t> clears{0};
    std::atomic<std::uint64_t> notifications{0};
    std::atomic<std::uint64_t> pages{0};
    std::atomic<std::uint64_t> brokenPages{0};
    std::atomic<std::uint64_t> connections{0};
    std::atomic<std::uint64_t> departures{0};
    std::atomic<std::uint64_t> forgottenSlots{0};
    std::atomic<std::uint64_t> refused{0};
};

/// A tally in memory that a forked process shares.
class SharedTally {
public:
    SharedTally() : memory(mmap(nullptr, sizeof(Tally), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
        if (memory == MAP_FAILED) {
            throw std::system_error(errno, std::generic_category(), "mmap");
        }
        tally = new (memory) Tally;
    }

    SharedTally(const SharedTally&) = delete;
    SharedTally& operator=(const SharedTally&) = delete;

    ~SharedTally() { munmap(memory, sizeof(Tally)); }

    Tally& operator*() const { return *tally; }

private:
    void* memory;
    Tally* tally;
};

/// The service logbook keeps everything, so that nothing can get lost unseen; the customer's drops its oldest.
class Databases : public lgb::DatabaseFactory {
public:
    explicit Databases(const std::filesystem::path& folder) : files(folder) {}

    std::unique_ptr<lgb::IDatabase> create(const char* name, std::uint32_t first, std::uint32_t) const override {
        return files.create(name, first, name == std::string("lgbCustomer") ? customerCapacity : 0);
    }

private:
    standalone::SqliteDatabaseFactory files;
};

/// Carries its writer and its number twice: shown as unit and device, and in its time.
Entry recordOf(std::int64_t writer, std::int64_t number) {
    Entry entry = lgb::LogbookEntryCreator::create(
        lgb::Entry(lgb::code::Code(20, tqbase2::nsa::zel::enums::LogbookEntryType::Info)));
    entry.details.unit = writer;
    entry.details.device = number;
    entry.timestamp = {writer, number, ""};
    return entry;
}

/// Whether a page holds whole records, those of each writer without gaps and newest first.
bool isOrderly(const std::vector<Entry>& page) {
    std::map<std::int64_t, std::int64_t> before;
    for (const Entry& entry : page) {
        const std::int64_t writer = entry.details.unit;
        const std::int64_t number = entry.details.device;
        const auto known = before.find(writer);
        if (entry.timestamp.seconds != writer || entry.timestamp.nanoseconds != number ||
            (known != before.end() && known->second != number + 1)) {
            return false;
        }
        before[writer] = number;
    }
    return true;
}

void readPage(lgb::ILogbook& logbook, unsigned int offset, Tally& tally) {
    tally.brokenPages += isOrderly(logbook.fetch(offset, 20)) ? 0 : 1;
    ++tally.pages;
}

/// Connects a slot that leaves when it is called.
void connectOnce(lgb::ILogbook& logbook, Tally& tally) {
    logbook.changed.connect_extended([&tally](const boost::signals2::connection& self) {
        self.disconnect();
        ++tally.departures;
    });
    ++tally.connections;
}

/// Both logbooks with everything that device software might hang on them.
class Device {
public:
    Device(const std::filesystem::path& folder, Tally& counted)
        : tally(counted), logbooks(Databases(folder), lgb::LogbookFactory()) {
        attend(customer());
        attend(service());
    }

    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    /// When all is quiet, one more change must find the slots that stay, and rid the logbook of those that leave.
    void conclude(std::int64_t writer) {
        customer().add(recordOf(writer, 1));
        ++tally.adds;
        tally.forgottenSlots += customer().changed.num_slots() == stayingSlots + 1 ? 0 : 1;
    }

    lgb::ILogbook& customer() { return logbooks.customer(); }

    lgb::ILogbook& service() { return logbooks.service(); }

private:
    static constexpr std::size_t stayingSlots = 3;

    void attend(lgb::ILogbook& logbook) {
        logbook.changed.connect([this] { ++tally.notifications; });
        logbook.changed.connect([this, &logbook] { readPage(logbook, 0, tally); });
        logbook.changed.connect([this, &logbook] { connectOnce(logbook, tally); });
    }

    Tally& tally;
    lgb::ZelLogbook logbooks;
};

void write(Device& device, std::int64_t writer, Tally& tally) {
    for (std::int64_t number = 1; number <= recordsOfEach; ++number) {
        for (lgb::ILogbook* const logbook : {&device.customer(), &device.service()}) {
            logbook->add(recordOf(writer, number));
            ++tally.adds;
        }
    }
}

void clear(Device& device, Tally& tally) {
    for (int time = 0; time < clears; ++time) {
        device.customer().clear();
        ++tally.clears;
    }
}

void read(Device& device, const std::atomic<bool>& done, Tally& tally) {
    for (unsigned int page = 0; !done || page == 0; ++page) {
        readPage(device.customer(), page % 30, tally);
        readPage(device.service(), page % 70, tally);
    }
}

/// Comes and goes.
void connectAndDisconnect(Device& device, const std::atomic<bool>& done, Tally& tally) {
    do {
        const boost::signals2::scoped_connection visit =
            device.service().changed.connect([&] { readPage(device.service(), 5, tally); });
        ++tally.connections;
        std::this_thread::yield();
    } while (!done);
}

template <typename Work>
std::thread start(Tally& tally, Work work) {
    return std::thread([&tally, work] {
        try {
            work();
        } catch (const std::exception& exception) {
            std::cerr << exception.what() << '\n';
            ++tally.refused;
        }
    });
}

void join(std::vector<std::thread>& threads) {
    for (std::thread& thread : threads) {
        thread.join();
    }
}

enum class Objects { One, OneForEachThread };

/// Everything at once in this process; returns when all threads have come to their end.
void work(const std::filesystem::path& folder, Objects objects, std::int64_t firstWriter, Tally& tally) {
    std::vector<std::unique_ptr<Device>> devices;
    const auto device = [&]() -> Device& {
        if (devices.empty() || objects == Objects::OneForEachThread) {
            devices.push_back(std::make_unique<Device>(folder, tally));
        }
        return *devices.back();
    };

    std::atomic<bool> done{false};
    std::vector<std::thread> busy;
    std::vector<std::thread> company;
    for (std::int64_t writer = firstWriter; writer < firstWriter + writers; ++writer) {
        busy.push_back(start(tally, [&, writer, &own = device()] { write(own, writer, tally); }));
    }
    busy.push_back(start(tally, [&, &own = device()] { clear(own, tally); }));
    company.push_back(start(tally, [&, &own = device()] { read(own, done, tally); }));
    company.push_back(start(tally, [&, &own = device()] { connectAndDisconnect(own, done, tally); }));
    join(busy);
    done = true;
    join(company);
    std::int64_t concluder = -firstWriter * 100;
    for (const std::unique_ptr<Device>& used : devices) {
        used->conclude(concluder++);
    }
}

/// Forks while no other thread runs.
void workInTwoProcesses(const std::filesystem::path& folder, Tally& tally) {
    const pid_t child = fork();
    if (child == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child == 0) {
        work(folder, Objects::OneForEachThread, 1 + writers, tally);
        _exit(0);
    }
    work(folder, Objects::One, 1, tally);
    int status = 0;
    waitpid(child, &status, 0);
    tally.refused += WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : 1;
}

/// The service logbook holds every record that was added, once.
void auditService(const std::vector<Entry>& records, std::int64_t writersInAll, support::Failures& failures) {
    std::map<std::pair<std::int64_t, std::int64_t>, int> times;
    for (const Entry& entry : records) {
        ++times[{entry.details.unit, entry.details.device}];
    }
    for (std::int64_t writer = 1; writer <= writersInAll; ++writer) {
        for (std::int64_t number = 1; number <= recordsOfEach; ++number) {
            const int found = times[{writer, number}];
            failures.expect(found == 1, "record " + std::to_string(number) + " of writer " + std::to_string(writer) +
                                            " is there " + std::to_string(found) + " times");
        }
    }
    failures.expect(isOrderly(records), "service records out of order");
}

/// Of the customer's records, cleared or dropped ones are gone; those of each writer that are left are its newest.
void auditCustomer(const std::vector<Entry>& records, std::int64_t writersInAll, support::Failures& failures) {
    std::map<std::int64_t, std::int64_t> newest;
    for (const Entry& entry : records) {
        newest.emplace(entry.details.unit, entry.details.device);
    }
    for (const auto& [writer, number] : newest) {
        failures.expect(writer > writersInAll || writer < 1 || number == recordsOfEach,
                        "the newest customer record of writer " + std::to_string(writer) + " is lost");
    }
    failures.expect(isOrderly(records), "customer records out of order");
    failures.expect(!records.empty() && records.size() <= customerCapacity, "too few or too many customer records");
}

/// @return records found in the service logbook
std::uint64_t audit(const std::filesystem::path& folder, std::int64_t writersInAll, support::Failures& failures) {
    const lgb::LogbookFactory logbooks;
    lgb::ZelLogbook device(Databases(folder), logbooks);
    const std::vector<Entry> service = device.service().fetchAll();
    auditService(service, writersInAll, failures);
    auditCustomer(device.customer().fetchAll(), writersInAll, failures);
    return service.size();
}

int run(int argc, char** argv) {
    const support::Extent extent = support::extentOf(argc, argv, usualRounds);
    const SharedTally shared;
    Tally& tally = *shared;
    support::Failures failures;
    std::uint64_t records = 0;
    for (std::uint64_t round = 0; round < extent.rounds; ++round) {
        for (const Objects objects : {Objects::One, Objects::OneForEachThread}) {
            const support::TemporaryFolder folder;
            work(folder.path(), objects, 1, tally);
            records += audit(folder.path(), writers, failures);
        }
        const support::TemporaryFolder folder;
        workInTwoProcesses(folder.path(), tally);
        records += audit(folder.path(), 2 * writers, failures);
    }

    failures.expect(tally.notifications == tally.adds + tally.clears, "changes and notifications differ in number");
    failures.expect(tally.brokenPages == 0, "a page was not whole records in order");
    failures.expect(tally.forgottenSlots == 0, "slots stayed that had left, or left that should stay");
    failures.expect(tally.refused == 0, "a thread or a process ended early");
    return failures.conclude(std::to_string(tally.adds) + " adds, " + std::to_string(tally.clears) + " clears, " +
                             std::to_string(tally.notifications) + " notifications, " + std::to_string(records) +
                             " records found, " + std::to_string(tally.pages) + " pages read, " +
                             std::to_string(tally.brokenPages) + " broken pages, " + std::to_string(tally.connections) +
                             " slots connected, " + std::to_string(tally.departures) + " left, " +
                             std::to_string(tally.refused) + " refused");
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
