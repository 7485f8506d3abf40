#include "commands.h"
#include "question.h"
#include "validators.h"
#include "words.h"

#include <standalone/LogbookReader.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <limits>
#include <memory>
#include <string>

namespace tool {

namespace {

struct Change {
    std::uint32_t capacity = 0;
    bool yes = false;
};

/// How many of the oldest entries would go.
std::int64_t tooMany(const Selection& selection, std::uint32_t capacity) {
    const std::int64_t stored = standalone::LogbookReader(fileOf(selection)).count();
    return capacity == 0 ? 0 : std::max<std::int64_t>(stored - capacity, 0);
}

void resize(const Selection& selection, const Change& change) {
    requireLogbook(selection);
    const std::int64_t going = tooMany(selection, change.capacity);
    const std::string question = "Remove the oldest " + entries(going) + " of the " + selection.logbook +
                                 " logbook, and keep no more than " + std::to_string(change.capacity) + "?";
    if (going > 0 && !change.yes && !isAgreedTo(question)) {
        std::cout << "Nothing changed.\n";
        return;
    }
    const std::int64_t removed = factoryFor(selection).resize(databaseName(selection), change.capacity);
    std::cout << "The " << selection.logbook << " logbook keeps "
              << (change.capacity == 0 ? "all entries" : "the newest " + entries(change.capacity));
    if (removed > 0) {
        std::cout << "; the oldest " << entries(removed) << (removed == 1 ? " was" : " were") << " removed";
    }
    std::cout << ".\n";
}

}  // namespace

void declareResize(CLI::App& app, Selection& selection) {
    CLI::App& command = *app.add_subcommand("resize", "Change how many entries a logbook keeps");
    const auto change = std::make_shared<Change>();
    declareLogbook(command, selection);
    takeNumber(command.add_option("capacity", change->capacity, "Most entries it keeps; 0: all")->required(),
               std::numeric_limits<std::uint32_t>::max());
    command.add_flag("--yes", change->yes, "Don't ask, also when entries are removed");
    command.callback([&selection, change] { resize(selection, *change); });
}

}  // namespace tool
