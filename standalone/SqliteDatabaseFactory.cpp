#include "SqliteDatabaseFactory.h"

#include "SqliteDatabase.h"
#include "errors.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <system_error>
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

void makeFolder(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw DatabaseError(folder.string() + ": can't make the folder: " + error.message());
    }
}

}  // namespace

std::filesystem::path logbookFolder() {
    if (const auto folder = pathFrom("TQZEL_LOGBOOK_DIR")) {
        return *folder;
    }
    if (const auto state = pathFrom("XDG_STATE_HOME")) {
        return *state / "tqzel-logbook";
    }
    if (const auto home = pathFrom("HOME")) {
        return *home / ".local/state/tqzel-logbook";
    }
    throw DatabaseError("no folder for the logbooks: none of TQZEL_LOGBOOK_DIR, XDG_STATE_HOME and HOME is set");
}

std::filesystem::path logbookFile(const std::filesystem::path& folder, const char* name) {
    return folder / (std::string(name) + ".db");
}

SqliteDatabaseFactory::SqliteDatabaseFactory(std::filesystem::path logbooks) : folder(std::move(logbooks)) {}

std::unique_ptr<lgb::IDatabase> SqliteDatabaseFactory::create(const char* name, std::uint32_t,
                                                              std::uint32_t second) const {
    makeFolder(folder);
    return std::make_unique<SqliteDatabase>(logbookFile(folder, name).string(), second);
}

std::int64_t SqliteDatabaseFactory::addAll(const char* name, std::uint32_t capacity,
                                           const std::vector<lgb::DatabaseRecord>& records) const {
    makeFolder(folder);
    return SqliteDatabase(logbookFile(folder, name).string(), capacity).addAll(records);
}

}  // namespace standalone

namespace lgb {

DatabaseFactory::~DatabaseFactory() = default;

std::unique_ptr<IDatabase> DatabaseFactory::create(const char* name, std::uint32_t first, std::uint32_t second) const {
    return standalone::SqliteDatabaseFactory(standalone::logbookFolder()).create(name, first, second);
}

}  // namespace lgb
