#include "logbooks.h"

#include "validators.h"

#include <lgb/LogbookFactory.h>
#include <standalone/SqliteDatabaseFactory.h>
#include <standalone/errors.h>

#include <vector>

namespace tool {

namespace {

std::filesystem::path folderOf(const Selection& selection) {
    return selection.folder.empty() ? standalone::logbookFolder() : selection.folder;
}

bool isService(const Selection& selection) {
    return selection.logbook == "service";
}

}  // namespace

void declareLogbook(CLI::App& command, Selection& selection) {
    command.add_option("logbook", selection.logbook, "The logbook")
        ->required()
        ->type_name("customer|service")
        ->check(oneOf(std::vector<std::string>{"customer", "service"}));
}

std::unique_ptr<lgb::ZelLogbook> open(const Selection& selection) {
    return std::make_unique<lgb::ZelLogbook>(standalone::SqliteDatabaseFactory(folderOf(selection)),
                                             lgb::LogbookFactory());
}

std::unique_ptr<lgb::ZelLogbook> openExisting(const Selection& selection) {
    const auto file = standalone::logbookFile(folderOf(selection), isService(selection) ? "lgbService" : "lgbCustomer");
    if (!std::filesystem::exists(file)) {
        throw standalone::DatabaseError(file.string() + ": there is no such logbook");
    }
    return open(selection);
}

lgb::ILogbook& selected(lgb::ZelLogbook& logbooks, const Selection& selection) {
    return isService(selection) ? logbooks.service() : logbooks.customer();
}

}  // namespace tool
