#include "commands.h"

#include <iostream>
#include <memory>
#include <string>

namespace tool {

namespace {

bool confirmed(const std::string& logbook) {
    std::cout << "Remove all entries of the " << logbook << " logbook? [y/N] " << std::flush;
    std::string answer;
    if (!std::getline(std::cin, answer)) {
        std::cout << '\n';
        throw CLI::RequiredError("an answer, or --yes,");
    }
    return answer == "y" || answer == "yes";
}

void clear(const Selection& selection, bool yes) {
    const auto logbooks = openExisting(selection);
    if (yes || confirmed(selection.logbook)) {
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
