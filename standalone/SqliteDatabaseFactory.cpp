#include "SqliteDatabaseFactory.h"

#include "SqliteDatabase.h"
#include "errors.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace standalone {

namespace {

std::optional<std::filesystem::path> pathFrom(const char* variable) {
    const char* const value = std::getenv(variable);
    if (value == nullptr || *value == '\0') {
        return std::nullopt;
    }
    return value;
}

}  // namespace

std::filesystem::path logbookFolder() {
    if (const auto folder = pathFrom("TQZEL_LOGBOOK_DIR")) {
        return *folder;
    }
    if (const auto folder = pathFrom("STATE_DIRECTORY")) {
        return *folder;
    }
    if (const auto state = pathFrom("XDG_STATE_HOME")) {
        return *state / "tqzel-logbook";
    }
    if (const auto home = pathFrom("HOME")) {
        return *home / ".local/state/tqzel-logbook";
    }
    throw DatabaseError(Failure::Missing,
                        "no folder for the logbooks: none of TQZEL_LOGBOOK_DIR, STATE_DIRECTORY, XDG_STATE_HOME and "
                        "HOME is set");
}

std::filesystem::path logbookFile(const std::filesystem::path& folder, const char* name) {
    return folder / (std::string(name) + ".db");
}

SqliteDatabaseFactory::SqliteDatabaseFactory(std::filesystem::path logbooks, Capacity meaningOfCapacity)
    : folder(std::move(logbooks)), meaning(meaningOfCapacity) {}

std::unique_ptr<lgb::IDatabase> SqliteDatabaseFactory::create(const char* name, std::uint32_t,
                                                              std::uint32_t second) const {
    return std::make_unique<SqliteDatabase>(logbookFile(folder, name).string(), WantedCapacity{second, meaning});
}

std::int64_t SqliteDatabaseFactory::addAll(const char* name, std::uint32_t capacity,
                                           const std::vector<lgb::DatabaseRecord>& records) const {
    return SqliteDatabase(logbookFile(folder, name).string(), {capacity, meaning}).addAll(records);
}

std::int64_t SqliteDatabaseFactory::resize(const char* name, std::uint32_t capacity) const {
    return SqliteDatabase(logbookFile(folder, name).string(), {capacity, Capacity::OfNewAlone}).resize(capacity);
}

}  // namespace standalone

namespace lgb {

DatabaseFactory::~DatabaseFactory() = default;

std::unique_ptr<IDatabase> DatabaseFactory::create(const char* name, std::uint32_t first, std::uint32_t second) const {
    return standalone::SqliteDatabaseFactory(standalone::logbookFolder()).create(name, first, second);
}

}  // namespace lgb
