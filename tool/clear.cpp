#include "commands.h"
#include "question.h"

#include <iostream>
#include <memory>

namespace tool {

namespace {

void clear(const Selection& selection, bool yes) {
    const auto logbooks = openExisting(selection);
    if (yes || isAgreedTo("Remove all entries of the " + selection.logbook + " logbook?")) {
        selected(*logbooks, selection).clear();
    } else {
        std::cout << "Nothing removed.\n";
    }
}

}  // namespace

void declareClear(CLI::App& app, Selection& selection) {
    CLI::App& command = *app.add_subcommand("clear", "Remove all entries of a logbook");
    const auto yes = std::make_shared<bool>(false);
    declareLogbook(command, selection);
    command.add_flag("--yes", *yes, "Don't ask");
    command.callback([&selection, yes] { clear(selection, *yes); });
}

}  // namespace tool
