#include "commands.h"
#include "validators.h"

#include <nsa/zel/logbook/Entry.h>
#include <standalone/printable.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

using tqbase2::nsa::zel::logbook::Entry;

namespace {

struct Page {
    unsigned int offset = 0;
    unsigned int count = 20;
    bool all = false;
};

using Row = std::array<std::string, 3>;

// Index is the type.
constexpr std::string_view typeNames[] = {"Info", "Warning", "Error"};

Row rowOf(const Entry& entry) {
    return {standalone::printable(entry.timestamp.text), std::string(typeNames[static_cast<std::size_t>(entry.type)]),
            standalone::printable(entry.description)};
}

/// Columns as wide as their widest text; the last one ends where its text does.
std::string table(const std::vector<Row>& rows) {
    std::size_t timeWidth = 0;
    std::size_t typeWidth = 0;
    for (const auto& [time, type, description] : rows) {
        timeWidth = std::max(timeWidth, time.size());
        typeWidth = std::max(typeWidth, type.size());
    }
    std::string text;
    for (const auto& [time, type, description] : rows) {
        fmt::format_to(std::back_inserter(text), "{:<{}}  {:<{}}  {}\n", time, timeWidth, type, typeWidth, description);
    }
    return text;
}

void show(const Selection& selection, const Page& page) {
    const auto logbooks = openExisting(selection);
    lgb::ILogbook& logbook = selected(*logbooks, selection);
    std::vector<Row> rows{{"Time", "Type", "Description"}};
    for (const Entry& entry : page.all ? logbook.fetchAll() : logbook.fetch(page.offset, page.count)) {
        rows.push_back(rowOf(entry));
    }
    std::cout << table(rows);
}

}  // namespace

void declareShow(CLI::App& app, Selection& selection) {
    CLI::App& command = *app.add_subcommand("show", "Show a logbook in words, newest entry first");
    const auto page = std::make_shared<Page>();
    declareLogbook(command, selection);
    const auto isNumber = between<unsigned int>(0, std::numeric_limits<unsigned int>::max());
    command.add_option("--offset", page->offset, "Entries to skip, 0 unless given")
        ->type_name("NUMBER")
        ->check(isNumber);
    command.add_option("--count", page->count, "Most entries to show, 20 unless given")
        ->type_name("NUMBER")
        ->check(isNumber);
    command.add_flag("--all", page->all, "Show every entry")->excludes("--offset")->excludes("--count");
    command.callback([&selection, page] { show(selection, *page); });
}

}  // namespace tool
