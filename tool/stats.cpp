#include "commands.h"
#include "counts.h"
#include "durations.h"
#include "entries.h"
#include "filter.h"
#include "logbooks.h"
#include "moments.h"
#include "terminal.h"
#include "validators.h"
#include "words.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tool {

namespace {

/// What a logbook holds, counted.
struct Statistics {
    Counts<std::string> types;
    Counts<ShownMessage> messages;
    Counts<std::int64_t> units;    // -1: none
    Counts<std::int64_t> devices;  // the same
    Counts<std::string> standings;
    std::vector<std::int64_t> seconds;

    std::int64_t all() const { return static_cast<std::int64_t>(seconds.size()); }
};

void count(const ReadEntry& read, const std::map<std::string, std::string>& words, Statistics& statistics) {
    statistics.seconds.push_back(read.entry.timestamp.seconds);
    ++statistics.standings[nameOf(read.standing)];
    if (!isRead(read)) {
        return;
    }
    ++statistics.types[nameOf(read.entry.type)];
    ++statistics.messages[messageOf(read.entry, words)];
    ++statistics.units[std::max<std::int64_t>(read.entry.details.unit, -1)];
    ++statistics.devices[std::max<std::int64_t>(read.entry.details.device, -1)];
}

/// @param describe what was counted
template <typename Key, typename Describe>
void print(const char* title, const Counts<Key>& counts, std::size_t width, Describe describe) {
    std::cout << '\n' << title << '\n';
    for (const auto& [key, number] : ranked(counts)) {
        std::cout << hanging(fmt::format("{:>8}  ", number), describe(key), width);
    }
}

/// Says of which unit or device.
auto numbered(const char* part) {
    return [part](std::int64_t number) {
        return number < 0 ? fmt::format("no {}", part) : fmt::format("{} {}", part, number);
    };
}

std::string unchanged(const std::string& name) {
    return name;
}

/// A bar for each part of the time that the entries span.
void printChart(const std::vector<std::int64_t>& seconds) {
    constexpr std::int64_t mostParts = 12;
    constexpr std::int64_t columns = 40;
    const auto [first, last] = std::minmax_element(seconds.begin(), seconds.end());
    const std::int64_t length = secondsBetween(*first, *last) / mostParts + 1;
    const std::int64_t parts = secondsBetween(*first, *last) / length + 1;
    std::vector<std::int64_t> counts(static_cast<std::size_t>(parts));
    for (const std::int64_t each : seconds) {
        ++counts[static_cast<std::size_t>(secondsBetween(*first, each) / length)];
    }
    const std::int64_t most = *std::max_element(counts.begin(), counts.end());
    std::cout << "\nOver time, " << duration(length) << " a line\n";
    for (std::int64_t part = 0; part < parts; ++part) {
        const std::int64_t number = counts[static_cast<std::size_t>(part)];
        const auto bar = static_cast<std::size_t>((number * columns + most - 1) / most);
        const std::int64_t begin = *first + part * length;
        std::cout << fmt::format("  {}  {:<{}}  {}\n", length < minute ? localSecond(begin) : localMinute(begin),
                                 std::string(bar, '#'), columns, number);
    }
}

/// @param width of the terminal in columns; 0: no limit
void print(const Statistics& statistics, std::size_t width) {
    std::cout << entries(statistics.all());
    if (statistics.seconds.empty()) {
        std::cout << '\n';
        return;
    }
    const auto [first, last] = std::minmax_element(statistics.seconds.begin(), statistics.seconds.end());
    std::cout << " from " << localZonedMinute(*first) << " to " << localZonedMinute(*last) << '\n';
    const auto inWords = [](const ShownMessage& message) {
        return message.code + (message.code.empty() ? "" : "  ") + message.words;
    };
    print("Types", statistics.types, width, unchanged);
    print("Messages", statistics.messages, width, inWords);
    print("Units", statistics.units, width, numbered("unit"));
    print("Devices", statistics.devices, width, numbered("device"));
    if (statistics.standings.size() > 1 || statistics.standings.count(nameOf(Standing::Shown)) == 0) {
        print("Standing", statistics.standings, width, unchanged);
    }
    printChart(statistics.seconds);
}

void stats(const Selection& selection, const Filter& filter) {
    requirePeriod(filter);
    standalone::LogbookReader reader(fileOf(selection));
    const auto words = wordings();
    Statistics statistics;
    forEachEntry(reader, {}, isService(selection), [&](ReadEntry&& read) {
        if (filter.matches(read)) {
            count(read, words, statistics);
        }
        return true;
    });
    const std::size_t width = terminalWidth();
    const Pager pager(true);
    print(statistics, width);
}

}  // namespace

void declareStats(CLI::App& app, Selection& selection) {
    CLI::App& command = *app.add_subcommand("stats", "Count messages, types, units and devices");
    const auto filter = std::make_shared<Filter>();
    declareLogbook(command, selection);
    declareFilter(command, *filter);
    command.callback([&selection, filter] { stats(selection, *filter); });
}

}  // namespace tool
