#pragma once

#include <lgb/ILogbook.h>
#include <lgb/ZelLogbook.h>
#include <standalone/SqliteDatabaseFactory.h>

#include <CLI/CLI.hpp>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tool {

inline const std::vector<std::string> logbookNames{"customer", "service"};

/// What every command is told: where the logbooks are, and which of the two is meant.
struct Selection {
    std::filesystem::path folder;  ///< empty: the standalone platform's default
    std::string logbook;           ///< one of logbookNames
};

/// Declares the argument that names a logbook.
CLI::Option* declareLogbook(CLI::App& command, Selection& selection);

bool isService(const Selection& selection);

/// The name of the selected logbook's database, which its file is named after.
const char* databaseName(const Selection& selection);

std::filesystem::path folderOf(const Selection& selection);

/// The file of the selected logbook.
std::filesystem::path fileOf(const Selection& selection);

/// Most records the selected logbook keeps, 0 for all: what its file says; of one not yet made what the library gives
/// it.
std::uint32_t capacityOf(const Selection& selection);

/// Opens logbooks that keep to their own capacity.
standalone::SqliteDatabaseFactory factoryFor(const Selection& selection);

bool folderExists(const Selection& selection);

/// Says on standard error that the folder was made: its name may be mistyped.
void tellOfNewFolder(const Selection& selection);

/// Opens the selected logbook, making it when missing. The other one is neither made nor opened, so that nothing wrong
/// with it stops the command; do not use it.
/// @throws standalone::DatabaseError
std::unique_ptr<lgb::ZelLogbook> open(const Selection& selection);

/// Whether there is anything by the name of the selected logbook, be it a link that leads nowhere.
bool isThere(const Selection& selection);

/// @throws standalone::DatabaseError, when there is no such logbook
void requireLogbook(const Selection& selection);

/// Opens a logbook for a command that works on what is there.
/// @throws standalone::DatabaseError, also when there is no such logbook
std::unique_ptr<lgb::ZelLogbook> openExisting(const Selection& selection);

lgb::ILogbook& selected(lgb::ZelLogbook& logbooks, const Selection& selection);

}  // namespace tool
