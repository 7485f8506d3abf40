// The disk is full, and stays full: both logbooks go on recording, with nothing failing, also when cleared and opened
// again. Give it a folder on a small file system of its own with --folder; without one there is no disk to fill, and it
// makes sure only that the session itself holds.

#include "Check.h"
#include "TemporaryFolder.h"

#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>
#include <lgb/ZelLogbook.h>
#include <lgb/params.h>
#include <standalone/SqliteDatabaseFactory.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <exception>
#include <filesystem>
#include <optional>

namespace {

using lgb::code::Code;
using tqbase2::nsa::zel::enums::LogbookEntryType;

/// Takes every byte that the disk has left; those that others freed in the meantime as well.
void fillDisk(const std::filesystem::path& file) {
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    const std::array<char, 4096> block{};
    while (write(descriptor, block.data(), block.size()) > 0) {
    }
    while (write(descriptor, block.data(), 1) > 0) {
    }
    fsync(descriptor);
    close(descriptor);
}

/// Both logbooks of a folder, and a count of what was asked of them.
class Session {
public:
    Session(std::filesystem::path logbooks, support::Failures& seen) : folder(std::move(logbooks)), failures(seen) {}

    void open() {
        attempt("open", [&] { zel.emplace(standalone::SqliteDatabaseFactory(folder), lgb::LogbookFactory()); });
    }

    void close() { zel.reset(); }

    void add(std::uint64_t count) {
        for (std::uint64_t i = 0; i < count; ++i) {
            const auto bus = static_cast<unsigned int>(added++);
            const lgb::Entry event(Code(14, LogbookEntryType::Error),
                                   lgb::params::createBusModuleAndService(bus, 3, "(3.1 A, expected 4.8 A)"));
            attempt("add to customer", [&] { zel->customer().add(lgb::LogbookEntryCreator::create(event)); });
            attempt("add to service", [&] { zel->service().add(lgb::LogbookEntryCreator::create(event)); });
        }
    }

    void clear() {
        attempt("clear", [&] { zel->customer().clear(); });
    }

    void expectNewest(std::size_t customer, std::size_t service) {
        attempt("fetch", [&] {
            expectNewest(zel->customer(), customer);
            expectNewest(zel->service(), service);
        });
    }

    std::uint64_t operations() const { return done; }

private:
    template <typename Operation>
    void attempt(const std::string& name, Operation operation) {
        ++done;
        try {
            operation();
        } catch (const std::exception& exception) {
            failures.expect(false, name + ": " + exception.what());
        }
    }

    void expectNewest(lgb::ILogbook& logbook, std::size_t count) {
        const auto entries = logbook.fetchAll();
        failures.expect(entries.size() == count,
                        std::to_string(entries.size()) + " entries instead of " + std::to_string(count));
        std::uint64_t bus = added;
        for (const auto& entry : entries) {
            const std::string place = "for amplifier 3 on bus " + std::to_string(--bus) + "!";
            failures.expect(entry.description.find(place) != std::string::npos,
                            entry.description + " where bus " + std::to_string(bus) + " was expected");
        }
    }

    std::filesystem::path folder;
    support::Failures& failures;
    std::optional<lgb::ZelLogbook> zel;
    std::uint64_t added = 0;
    std::uint64_t done = 0;
};

int run(int argc, char** argv) {
    std::string disk;
    const support::Extent extent =
        support::extentOf(argc, argv, 200, {{"--folder", &disk, "on a small file system of its own"}});

    constexpr std::uintmax_t small = std::uintmax_t{64} << 20;  // 64 MB
    if (!disk.empty() && std::filesystem::space(disk).capacity > small) {
        std::cerr << disk << ": not on a small file system of its own, and I would fill it\n";
        return 2;
    }

    const support::TemporaryFolder temporary;
    const std::filesystem::path folder = disk.empty() ? temporary.path() : std::filesystem::path(disk);
    const auto fill = [&] {
        if (!disk.empty()) {
            fillDisk(folder / "filler");
        }
    };

    support::Failures failures;
    Session session(folder / "logbooks", failures);
    session.open();
    fill();
    session.add(1000);
    session.add(extent.rounds);
    session.expectNewest(500, 1000);
    session.clear();
    session.add(300);
    session.expectNewest(300, 1000);
    session.close();
    fill();
    session.open();
    fill();
    session.add(1000);
    session.expectNewest(500, 1000);
    return failures.conclude("full disk: " + std::to_string(session.operations()) + " operations");
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
