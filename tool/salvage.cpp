#include "commands.h"
#include "exportLine.h"
#include "output.h"
#include "progress.h"
#include "rights.h"
#include "terminal.h"
#include "words.h"

#include <standalone/Salvage.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace tool {

namespace {

struct Search {
    std::string file;
    std::string output;
    bool all = false;
};

/// Those of removed entries come before all that were kept.
std::vector<std::int64_t> wantedOf(const standalone::Salvage& found, bool all) {
    std::vector<std::int64_t> numbers;
    if (all) {
        numbers = found.removed();
    }
    numbers.insert(numbers.end(), found.numbers().begin(), found.numbers().end());
    return numbers;
}

void tell(const standalone::Salvage& found, const Search& search) {
    std::ostream& stream = search.output.empty() ? std::cerr : std::cout;  // where nothing is written to
    const char* const prefix = search.output.empty() ? "tqzel-logbook: " : "";
    stream << prefix << entries(static_cast<std::int64_t>(found.numbers().size())) << " found whole";
    const char* separator = "; not found: ";
    for (const standalone::LostRange& range : found.missing()) {
        stream << separator << entriesFrom(range.first, range.last);
        separator = ", ";
    }
    stream << '\n';
    if (!found.removed().empty()) {
        stream << prefix << entries(static_cast<std::int64_t>(found.removed().size()))
               << " that had been removed before "
               << (search.all ? "were written, too" : "are there; --all writes them, too") << '\n';
    }
}

void salvage(const Selection& selection, const Search& search) {
    const std::filesystem::path file = search.file;
    const OwnersRights rights(file.has_parent_path() ? file.parent_path() : std::filesystem::current_path(),
                              OwnersRights::Use::OfOneFileToRead);
    const std::unique_ptr<standalone::Salvage> found = [&] {
        Progress progress(0);
        return std::make_unique<standalone::Salvage>(
            file.has_parent_path() ? rights.folder() / file.filename() : file,
            [&](std::int64_t done, std::int64_t all) { progress.advanceTo(done, all); });
    }();
    writeOutput(selection, search.output, [&](std::ostream& stream, bool isSeen) {
        for (const std::int64_t number : wantedOf(*found, search.all)) {
            if (const auto record = found->record(number)) {
                writeExportLine(stream, isSeen, *record);
            }
        }
    });
    tell(*found, search);
}

}  // namespace

void declareSalvage(CLI::App& app, Selection& selection) {
    CLI::App& command = *app.add_subcommand(
        "salvage", "Write each entry that is whole in a damaged file as JSON lines, oldest entry first");
    const auto search = std::make_shared<Search>();
    command.add_option("file", search->file, "The damaged file; its log is looked for beside it")
        ->required()
        ->type_name("FILE");
    command.add_option("--output", search->output, "File to write, standard output unless given")->type_name("FILE");
    command.add_flag("--all", search->all, "Also entries that had been removed, being the oldest or cleared");
    command.callback([&selection, search] { salvage(selection, *search); });
}

}  // namespace tool
