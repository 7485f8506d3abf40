// Any bytes as the files of a logbook: whoever reads, opens, heals, adds or salvages does so or throws a DatabaseError,
// and soon.

#include "TemporaryFolder.h"
#include "preparedFiles.h"
#include "require.h"

#include <lgb/IDatabase.h>
#include <standalone/LogbookReader.h>
#include <standalone/Salvage.h>
#include <standalone/SqliteDatabaseFactory.h>
#include <standalone/errors.h>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>

namespace {

constexpr const char* name = "lgbFuzzed";
constexpr unsigned int mostRecords = 1000;

/// Files in memory, where there are such, but small ones: a head may ask for space for 4 billion records, which no disk
/// has. Lines of the log are made and go nowhere.
void prepareEnvironment() {
    if (access("/dev/shm", W_OK) == 0) {
        setenv("TMPDIR", "/dev/shm", 0);
    }
    setenv("TQZEL_LOG_LEVEL", "5", 1);
    constexpr rlim_t mostBytes = rlim_t{64} * 1024 * 1024;
    const rlimit fileSize{mostBytes, mostBytes};
    setrlimit(RLIMIT_FSIZE, &fileSize);
    std::signal(SIGXFSZ, SIG_IGN);
}

/// @return whether nothing refused the files
template <typename Operation>
bool isDone(Operation operation) {
    try {
        operation();
        return true;
    } catch (const standalone::DatabaseError&) {
        return false;
    }
}

void readAll(const std::filesystem::path& database) {
    standalone::LogbookReader reader(database);
    const auto newestFirst = reader.before(std::numeric_limits<std::int64_t>::max(), mostRecords);
    const auto oldestFirst = reader.after(std::numeric_limits<std::int64_t>::min(), mostRecords);
    fuzz::require(newestFirst.size() == oldestFirst.size() || newestFirst.size() == mostRecords,
                  "as many records forwards as backwards");
    fuzz::require(reader.count() >= static_cast<std::int64_t>(newestFirst.size()), "all records count");
    reader.description();
}

void salvageAll(const std::filesystem::path& database) {
    const standalone::Salvage salvage(database);
    for (const auto* const numbers : {&salvage.numbers(), &salvage.removed()}) {
        for (const std::int64_t number : *numbers) {
            fuzz::require(salvage.record(number).has_value(), "what was found can be read");
        }
    }
    salvage.missing();
}

void onlyRead(const std::filesystem::path& folder, const std::filesystem::path& database) {
    const auto before = support::filesOf(folder);
    isDone([&] { readAll(database); });
    isDone([&] { standalone::structuralDamage(database); });
    isDone([&] { salvageAll(database); });
    fuzz::require(support::filesOf(folder) == before, "reading changes no file");
}

constexpr const char* addedText = "added";

bool isAddedHere(const lgb::DatabaseRecord& record) {
    return record.timestamp.text == addedText;
}

/// @return whether the record was added
bool add(const standalone::SqliteDatabaseFactory& factory) {
    constexpr std::uint32_t capacity = 7;
    const std::unique_ptr<lgb::IDatabase> logbook = factory.create(name, 0, capacity);
    logbook->fetch(0, mostRecords);
    return isDone([&] {
        logbook->add("{}", {1700000000, 1, addedText});
        const auto newest = logbook->fetch(0, 1);
        fuzz::require(newest.size() == 1 && isAddedHere(newest[0]), "what was added is the newest");
        logbook->count();
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    [[maybe_unused]] const std::clock_t begin = std::clock();
    prepareEnvironment();
    const support::TemporaryFolder folder;
    const standalone::SqliteDatabaseFactory factory(folder.path(), standalone::Capacity::OfNewAlone);
    const std::filesystem::path database = standalone::logbookFile(folder.path(), name);
    support::writePreparedFiles(database, std::string(data, data + size));
    onlyRead(folder.path(), database);
    bool isAdded = false;
    isDone([&] { isAdded = add(factory); });
    if (isAdded) {
        fuzz::require(standalone::structuralDamage(database).empty(), "what was added to is sound");
        const auto kept = factory.create(name, 0, 0)->fetch(0, mostRecords);
        // Behind it there may be what the log still held.
        fuzz::require(std::any_of(kept.begin(), kept.end(), isAddedHere), "what was added is kept");
    }
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
    // Of the processor, as other work on the machine may take its time.
    fuzz::require(std::clock() - begin < CLOCKS_PER_SEC, "any files are done with within a second");
#endif
    return 0;
}
