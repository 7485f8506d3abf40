// Files are damaged: one bit of every byte of a small logbook is flipped in turn, and the file is cut at every page and
// at random lengths. Each time the file is refused by name, or every record that does not come back as it was is named
// in a log line; the other logbook goes on, and nothing crashes.

#include "CapturedErrors.h"
#include "Check.h"
#include "TemporaryFolder.h"
#include "lines.h"

#include <standalone/SqliteDatabaseFactory.h>
#include <standalone/errors.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <vector>

namespace {

using support::CapturedErrors;
using support::Failures;
using support::TemporaryFolder;
using Texts = std::vector<std::string>;

constexpr std::uint32_t capacity = 20;

struct Figures {
    std::uint64_t damages = 0;
    std::uint64_t refused = 0;
    std::uint64_t leftOut = 0;
    std::uint64_t harmless = 0;
};

/// Both logbooks in one folder, the customer's to be damaged again and again.
class Logbooks {
public:
    Logbooks() {
        for (const char* name : {"lgbCustomer", "lgbService"}) {
            const auto database = open(name);
            for (int number = 1; number <= 50; ++number) {
                database->add("record " + std::to_string(number) + std::string(60, '.'), {number, number, "18:00"});
            }
        }
        whole = texts(*open("lgbCustomer"));
        content = support::contentOf(file);
    }

    std::unique_ptr<lgb::IDatabase> open(const char* name) const {
        return standalone::SqliteDatabaseFactory(folder.path()).create(name, 0, capacity);
    }

    static Texts texts(lgb::IDatabase& database) {
        Texts found;
        for (const auto& record : database.fetch(0, 1000)) {
            found.push_back(record.timestamp.text + ' ' + record.json);
        }
        return found;
    }

    void damage(const std::string& damaged) const {
        std::filesystem::remove(file.string() + "-wal");
        std::filesystem::remove(file.string() + "-shm");
        support::write(file, damaged);
    }

    TemporaryFolder folder;
    std::filesystem::path file = folder / "lgbCustomer.db";
    Texts whole;
    std::string content;
};

/// What the damaged logbook says; nothing when it is refused.
std::optional<Texts> read(const Logbooks& logbooks, const std::string& what, Failures& failures) {
    try {
        const auto database = logbooks.open("lgbCustomer");
        return Logbooks::texts(*database);
    } catch (const standalone::DatabaseError& error) {
        failures.expect(std::string(error.what()).rfind(logbooks.file.string() + ": ", 0) == 0,
                        what + ": refused without its name: " + error.what());
        return std::nullopt;
    }
}

void expectNoticed(const Logbooks& logbooks, const std::string& what, CapturedErrors& errors, Failures& failures,
                   Figures& figures) {
    ++figures.damages;
    const std::optional<Texts> found = read(logbooks, what, failures);
    const std::string log = errors.take();
    if (!found) {
        ++figures.refused;
        return;
    }
    const std::size_t named = support::occurrences(log, logbooks.file.string() + ": record ");
    failures.expect(support::isSelection(*found, logbooks.whole), what + ": a record has changed");
    failures.expect(
        found->size() + named == logbooks.whole.size(),
        what + ": " + std::to_string(found->size()) + " records, and " + std::to_string(named) + " named as damaged");
    ++(named > 0 ? figures.leftOut : figures.harmless);
}

void expectOtherGoesOn(const Logbooks& logbooks, const std::string& what, Failures& failures) {
    const auto other = logbooks.open("lgbService");
    other->add("after " + what, {});
    failures.expect(Logbooks::texts(*other).front() == " after " + what, what + ": the other logbook does not go on");
}

int run(int argc, char** argv) {
    std::uint64_t every = 1;
    const support::Extent extent =
        support::extentOf(argc, argv, 200, {{"--every", &every, "damage only each n-th byte"}});
    const auto step = static_cast<std::size_t>(every);
    const Logbooks logbooks;
    Failures failures;
    Figures figures;
    {
        CapturedErrors errors;
        for (std::size_t byte = 0; byte < logbooks.content.size(); byte += step) {
            std::string damaged = logbooks.content;
            damaged[byte] = static_cast<char>(damaged[byte] ^ (1 << (byte % 8)));
            logbooks.damage(damaged);
            const std::string what = "bit " + std::to_string(byte % 8) + " of byte " + std::to_string(byte);
            expectNoticed(logbooks, what, errors, failures, figures);
            if (byte / step % 512 == 0) {
                expectOtherGoesOn(logbooks, what, failures);
            }
        }
        const auto cutAt = [&](std::size_t length) {
            logbooks.damage(logbooks.content.substr(0, length));
            expectNoticed(logbooks, "cut at " + std::to_string(length), errors, failures, figures);
        };
        constexpr std::size_t page = 1024;
        for (std::size_t length = page; length < logbooks.content.size(); length += page) {
            cutAt(length);
        }
        constexpr std::size_t shortest = 2;  // SQLite takes a file of one byte for an empty one
        std::mt19937 random(extent.seed);
        for (std::uint64_t round = 0; round < extent.rounds; ++round) {
            cutAt(std::uniform_int_distribution<std::size_t>(shortest, logbooks.content.size() - 1)(random));
        }
    }
    return failures.conclude("damaged files: " + std::to_string(figures.damages) + " damages, " +
                             std::to_string(figures.refused) + " refused, " + std::to_string(figures.leftOut) +
                             " with damaged records named, " + std::to_string(figures.harmless) + " harmless");
}

}  // namespace

int main(int argc, char** argv) {
    return support::outcomeOf(run, argc, argv);
}
