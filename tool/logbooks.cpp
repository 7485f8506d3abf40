#include "logbooks.h"

#include "terminal.h"
#include "validators.h"

#include <lgb/IDatabase.h>
#include <lgb/LogbookFactory.h>
#include <standalone/LogbookReader.h>
#include <standalone/errors.h>

#include <cstdint>
#include <iostream>
#include <system_error>
#include <vector>

namespace tool {

namespace {

/// In the place of the logbook that was not selected.
class NoDatabase : public lgb::IDatabase {
public:
    std::vector<lgb::DatabaseRecord> fetch(unsigned int, unsigned int) override { return {}; }

    void add(const std::string&, const lgb::timestamp::Timestamp&) override {}

    void clear() override {}

    unsigned int count() override { return 0; }
};

/// Opens the selected database alone.
class SelectedDatabaseFactory : public standalone::SqliteDatabaseFactory {
public:
    explicit SelectedDatabaseFactory(const Selection& selection)
        : SqliteDatabaseFactory(factoryFor(selection)), selected(databaseName(selection)) {}

    std::unique_ptr<lgb::IDatabase> create(const char* name, std::uint32_t first, std::uint32_t second) const override {
        if (selected != name) {
            return std::make_unique<NoDatabase>();
        }
        return SqliteDatabaseFactory::create(name, first, second);
    }

private:
    std::string selected;
};

/// Learns the capacity that the library gives to a logbook.
class UsualCapacity : public lgb::DatabaseFactory {
public:
    explicit UsualCapacity(const char* database) : name(database) {}

    std::unique_ptr<lgb::IDatabase> create(const char* created, std::uint32_t, std::uint32_t second) const override {
        if (name == created) {
            records = second;
        }
        return std::make_unique<NoDatabase>();
    }

    mutable std::uint32_t records = 0;

private:
    std::string name;
};

std::uint32_t usualCapacityOf(const Selection& selection) {
    const UsualCapacity capacity(databaseName(selection));
    const lgb::ZelLogbook logbooks(capacity, lgb::LogbookFactory());
    return capacity.records;
}

}  // namespace

std::filesystem::path folderOf(const Selection& selection) {
    return selection.folder.empty() ? standalone::logbookFolder() : selection.folder;
}

bool isService(const Selection& selection) {
    return selection.logbook == "service";
}

const char* databaseName(const Selection& selection) {
    return isService(selection) ? "lgbService" : "lgbCustomer";
}

std::filesystem::path fileOf(const Selection& selection) {
    return standalone::logbookFile(folderOf(selection), databaseName(selection));
}

std::uint32_t capacityOf(const Selection& selection) {
    try {
        return standalone::LogbookReader(fileOf(selection)).description().capacity;
    } catch (const standalone::DatabaseError& error) {
        if (error.kind() != standalone::Failure::Missing && error.kind() != standalone::Failure::Damaged) {
            throw;
        }
        return usualCapacityOf(selection);
    }
}

standalone::SqliteDatabaseFactory factoryFor(const Selection& selection) {
    return standalone::SqliteDatabaseFactory(folderOf(selection), standalone::Capacity::OfNewAlone);
}

CLI::Option* declareLogbook(CLI::App& command, Selection& selection) {
    CLI::Option* const option = command.add_option("logbook", selection.logbook, "The logbook")->required();
    return takeOneOf(option, logbookNames);
}

bool folderExists(const Selection& selection) {
    std::error_code none;
    return std::filesystem::exists(folderOf(selection), none);
}

void tellOfNewFolder(const Selection& selection) {
    std::cerr << "tqzel-logbook: made the folder " << printable(folderOf(selection).string()) << '\n';
}

std::unique_ptr<lgb::ZelLogbook> open(const Selection& selection) {
    const bool isNew = !folderExists(selection);
    auto logbooks = std::make_unique<lgb::ZelLogbook>(SelectedDatabaseFactory(selection), lgb::LogbookFactory());
    if (isNew) {
        tellOfNewFolder(selection);
    }
    return logbooks;
}

bool isThere(const Selection& selection) {
    std::error_code trouble;  // which opening it tells of
    const std::filesystem::file_status status = std::filesystem::symlink_status(fileOf(selection), trouble);
    return status.type() != std::filesystem::file_type::not_found;
}

void requireLogbook(const Selection& selection) {
    if (!isThere(selection)) {
        throw standalone::DatabaseError(standalone::Failure::Missing,
                                        fileOf(selection).string() + ": there is no such logbook");
    }
}

std::unique_ptr<lgb::ZelLogbook> openExisting(const Selection& selection) {
    requireLogbook(selection);
    return open(selection);
}

lgb::ILogbook& selected(lgb::ZelLogbook& logbooks, const Selection& selection) {
    return isService(selection) ? logbooks.service() : logbooks.customer();
}

}  // namespace tool
