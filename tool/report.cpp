#include "commands.h"
#include "counts.h"
#include "durations.h"
#include "entries.h"
#include "logbooks.h"
#include "moments.h"
#include "output.h"
#include "reportTemplates.h"
#include "terminal.h"
#include "timeline.h"
#include "validators.h"
#include "words.h"

#include <lgb/Entry.h>
#include <lgb/timestamp.h>
#include <standalone/LogbookReader.h>
#include <standalone/errors.h>

#include <fmt/format.h>
#include <kainjow/mustache.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tool {

namespace mustache = kainjow::mustache;
using tqbase2::nsa::zel::enums::LogbookEntryType;
using tqbase2::nsa::zel::logbook::Entry;

namespace {

/// What a report tells of a logbook.
struct Contents {
    std::string name;
    bool missing = false;
    std::string fault;    ///< why it could not be read, or not to its end
    std::string entries;  ///< as rows of a table
    std::int64_t number = 0;
    std::vector<Moment> moments;  ///< of those that could be read
    Counts<ShownMessage> messages;

    std::int64_t unreadable() const { return number - static_cast<std::int64_t>(moments.size()); }

    bool wasRead() const { return !missing && (fault.empty() || number > 0); }
};

struct TypeWords {
    const char* singular;
    const char* plural;
};

// Index is the type.
constexpr TypeWords typeWords[] = {{"Info", "Information"}, {"Warning", "Warnings"}, {"Error", "Errors"}};
constexpr LogbookEntryType worstFirst[] = {LogbookEntryType::Error, LogbookEntryType::Warning, LogbookEntryType::Info};

const TypeWords& wordsOfType(LogbookEntryType type) {
    return typeWords[static_cast<std::size_t>(type)];
}

std::string reasonOf(const ReadEntry& read) {
    if (read.standing == Standing::Damaged) {
        return "what is stored is not what was added";
    }
    return read.standing == Standing::ServiceOnly ? "the customer logbook shows no free text" : read.reason;
}

/// What the words of an entry leave out.
std::string storedOf(const ReadEntry& read) {
    if (!isRead(read)) {
        return read.document;
    }
    return read.hasMessage && read.standing != Standing::Wordless ? "" : read.entry.details.params;
}

std::string numberOrNothing(std::int64_t number) {
    return number < 0 ? "" : std::to_string(number);
}

void setReadable(mustache::data& row, const Entry& entry) {
    row.set("type", nameOf(entry.type));
    row.set("typeName", wordsOfType(entry.type).singular);
    row.set("words", printable(entry.description));
    row.set("code", lgb::isServiceOnly(entry) ? "" : codeOf(entry));
    row.set("unit", numberOrNothing(entry.details.unit));
    row.set("device", numberOrNothing(entry.details.device));
}

mustache::data rowOf(const ReadEntry& read) {
    const auto& timestamp = read.entry.timestamp;
    mustache::data row;
    row.set("number", std::to_string(read.number));
    row.set("instant", iso8601(timestamp.seconds, timestamp.nanoseconds));
    row.set("time", printable(timestamp.text));
    if (isRead(read)) {
        setReadable(row, read.entry);
    } else {
        row.set("type", "unreadable");
        row.set("typeName", "Unreadable");
    }
    if (read.standing != Standing::Shown) {
        row.set("standing", nameOf(read.standing));
        row.set("reason", ": " + printable(reasonOf(read)));
    }
    if (const std::string stored = storedOf(read); !stored.empty()) {
        row.set("stored", printable(stored));
    }
    if (read.clockSetBack > 0) {
        row.set("clock", "clock set back by " + duration(read.clockSetBack));
    }
    return row;
}

/// Reads all there is of a logbook.
Contents read(const Selection& selection) {
    Contents contents;
    contents.name = selection.logbook;
    contents.missing = !isThere(selection);
    if (contents.missing) {
        return contents;
    }
    const auto words = wordings();
    mustache::mustache row(templates::reportEntry);
    try {
        standalone::LogbookReader reader(fileOf(selection));
        forEachEntry(reader, {}, isService(selection), [&](ReadEntry&& each) {
            ++contents.number;
            contents.entries += row.render(rowOf(each));
            if (isRead(each)) {
                contents.moments.push_back({each.entry.timestamp.seconds, each.entry.type});
                ++contents.messages[messageOf(each.entry, words)];
            }
            return true;
        });
    } catch (const std::exception& exception) {
        contents.fault = exception.what();
    }
    return contents;
}

mustache::data figuresOf(const Contents& contents) {
    mustache::data figures(mustache::data::type::list);
    const auto add = [&](const std::string& label, std::int64_t count, const std::string& type) {
        mustache::data figure("label", label);
        figure.set("count", std::to_string(count));
        figure.set("type", type.empty() ? mustache::data(false) : mustache::data(type));
        figures << figure;
    };
    for (const LogbookEntryType type : worstFirst) {
        add(wordsOfType(type).plural,
            std::count_if(contents.moments.begin(), contents.moments.end(),
                          [&](const Moment& moment) { return moment.type == type; }),
            nameOf(type));
    }
    if (contents.unreadable() > 0) {
        add("Unreadable", contents.unreadable(), "");
    }
    return figures;
}

constexpr double plotTop = 8;
constexpr double plotBottom = 168;

/// The least of 1, 2, 4, 6, 8, 10, 20, 40, ... that is not below.
std::int64_t roundedUp(std::int64_t number) {
    std::int64_t power = 1;
    while (true) {
        for (const std::int64_t factor : {1, 2, 4, 6, 8}) {
            if (factor * power >= number) {
                return factor * power;
            }
        }
        power *= 10;
    }
}

std::string coordinate(double value) {
    return fmt::format("{:.2f}", value);
}

/// How far up the plot a count is.
double heightOf(std::int64_t count, std::int64_t top) {
    return (plotBottom - plotTop) * static_cast<double>(count) / static_cast<double>(top);
}

mustache::data ticksOf(std::int64_t top) {
    mustache::data ticks(mustache::data::type::list);
    for (const std::int64_t count : {std::int64_t{0}, top / 2, top}) {
        if (count * 2 == top || count != top / 2) {
            mustache::data tick("count", std::to_string(count));
            tick.set("y", coordinate(plotBottom - heightOf(count, top)));
            ticks << tick;
        }
    }
    return ticks;
}

/// The bars of a part of the time, one upon the other.
mustache::data barsOf(const Timeline& timeline, std::size_t index, std::int64_t top) {
    const double width = 100.0 / static_cast<double>(timeline.parts.size());
    double y = plotBottom;
    mustache::data bars(mustache::data::type::list);
    for (const LogbookEntryType type : worstFirst) {
        const std::int64_t count = timeline.parts[index][static_cast<std::size_t>(type)];
        if (count > 0) {
            const double height = heightOf(count, top);
            y -= height;
            mustache::data bar("type", nameOf(type));
            bar.set("x", coordinate(width * static_cast<double>(index)));
            bar.set("y", coordinate(y));
            bar.set("width", coordinate(width));
            bar.set("height", coordinate(height));
            bars << bar;
        }
    }
    return bars;
}

/// A time on the axis: as exact as the parts are.
std::string axisTime(std::int64_t seconds, const Timeline& timeline) {
    const std::string text = localMinute(seconds);
    return timeline.length < day ? text : text.substr(0, text.find(' '));
}

std::string countsText(const Timeline::Part& part) {
    std::string text;
    for (const LogbookEntryType type : worstFirst) {
        text += fmt::format("{}{}: {}", text.empty() ? "" : ", ", wordsOfType(type).plural,
                            part[static_cast<std::size_t>(type)]);
    }
    return text;
}

std::int64_t sum(const Timeline::Part& part) {
    return part[0] + part[1] + part[2];
}

mustache::data chartOf(const Contents& contents) {
    const Timeline timeline = timelineOf(contents.moments);
    const auto timeOf = [&](std::size_t part) {
        return axisTime(timeline.first + static_cast<std::int64_t>(part) * timeline.length, timeline);
    };
    const std::size_t end = timeline.parts.size();
    const auto highest = std::max_element(timeline.parts.begin(), timeline.parts.end(),
                                          [](const auto& one, const auto& other) { return sum(one) < sum(other); });
    const std::int64_t top = roundedUp(sum(*highest));
    mustache::data parts(mustache::data::type::list);
    Timeline::Part all{};
    for (std::size_t index = 0; index < end; ++index) {
        const Timeline::Part& part = timeline.parts[index];
        std::transform(all.begin(), all.end(), part.begin(), all.begin(), std::plus<>());
        if (sum(part) > 0) {
            mustache::data data("title", timeOf(index) + "  " + countsText(part));
            data.set("bars", barsOf(timeline, index, top));
            parts << data;
        }
    }
    mustache::data chart("parts", parts);
    chart.set("title", fmt::format("Entries of the {} logbook from {} to {}. {}", contents.name, timeOf(0), timeOf(end),
                                   countsText(all)));
    chart.set("length", duration(timeline.length));
    chart.set("ticks", ticksOf(top));
    chart.set("first", timeOf(0));
    chart.set("middle", timeOf(end / 2));
    chart.set("last", timeOf(end));
    return chart;
}

/// The most frequent messages and, when there are more, how many they are of how many.
void setFrequent(mustache::data& logbook, const Contents& contents) {
    constexpr std::size_t most = 8;
    mustache::data list(mustache::data::type::list);
    auto messages = ranked(contents.messages);
    if (messages.size() > most) {
        logbook.set("frequentExtent", fmt::format(", {} of {}", most, messages.size()));
        messages.resize(most, {});
    }
    for (const auto& [message, count] : messages) {
        mustache::data item("count", std::to_string(count));
        item.set("type", nameOf(message.type));
        item.set("code", message.code);
        item.set("wording", message.words);
        list << item;
    }
    logbook.set("hasFrequent", true);
    logbook.set("frequent", list);
}

/// How many entries there are, and from when to when as far as could be read.
std::string extentText(const Contents& contents) {
    std::string number = entries(contents.number);
    if (contents.moments.empty()) {
        return number;
    }
    const Span span = spanOf(contents.moments);
    return fmt::format("{} from {} to {}", number, localZonedMinute(span.first), localZonedMinute(span.last));
}

mustache::data dataOf(const Contents& contents) {
    mustache::data logbook("name", contents.name);
    logbook.set("heading", contents.name == "service" ? "Service logbook" : "Customer logbook");
    logbook.set("missing", contents.missing);
    logbook.set("read", contents.wasRead());
    if (!contents.fault.empty()) {
        logbook.set("fault", printable(contents.fault));
    }
    if (contents.wasRead()) {
        logbook.set("extent", extentText(contents));
        logbook.set("figures", figuresOf(contents));
        logbook.set("entries", contents.entries);
    }
    if (!contents.moments.empty()) {
        logbook.set("chart", chartOf(contents));
        setFrequent(logbook, contents);
    }
    return logbook;
}

mustache::data pageOf(const std::vector<Contents>& logbooks, const std::filesystem::path& folder,
                      const std::string& title) {
    mustache::data page("title", printable(title));
    page.set("made", printable(lgb::timestamp::now().text));
    page.set("folder", printable(std::filesystem::absolute(folder).lexically_normal().string()));
    page.set("version", TQZEL_VERSION);
    mustache::data list(mustache::data::type::list);
    for (const Contents& contents : logbooks) {
        list << dataOf(contents);
    }
    page.set("logbooks", list);
    page.set("bothRead", std::all_of(logbooks.begin(), logbooks.end(), std::mem_fn(&Contents::wasRead)));
    page.set("anyUnreadable", std::any_of(logbooks.begin(), logbooks.end(),
                                          [](const Contents& contents) { return contents.unreadable() > 0; }));
    return page;
}

void report(const Selection& selection, const std::string& file, const std::string& title) {
    if (file.empty() && isTerminal()) {
        throw CLI::ValidationError("--output", "is missing, expected a file; a page is not for a terminal");
    }
    std::vector<Contents> logbooks;
    std::string faults;
    for (const std::string& name : logbookNames) {
        logbooks.push_back(read({selection.folder, name}));
        const std::string& fault = logbooks.back().fault;
        faults += (faults.empty() || fault.empty() ? "" : "; ") + fault;
    }
    const std::filesystem::path folder = folderOf(selection);
    if (std::none_of(logbooks.begin(), logbooks.end(), std::mem_fn(&Contents::wasRead))) {
        throw standalone::DatabaseError(standalone::Failure::Missing,
                                        faults.empty() ? folder.string() + ": there is no logbook" : faults);
    }
    const mustache::data page = pageOf(logbooks, folder, title);
    writeOutput(selection, file,
                [&](std::ostream& stream, bool) { mustache::mustache(templates::report).render(page, stream); });
    if (!faults.empty()) {
        throw std::runtime_error(faults + "; the report tells all that could be read");
    }
}

}  // namespace

void declareReport(CLI::App& app, Selection& selection) {
    struct Request {
        std::string file;
        std::string title = "Logbook report";
    };

    CLI::App& command = *app.add_subcommand("report", "Write both logbooks as one HTML page to send to a colleague");
    const auto request = std::make_shared<Request>();
    command
        .add_option("--output", request->file,
                    "File to write, standard output unless given, which then must be no terminal")
        ->type_name("FILE");
    command.add_option("--title", request->title, "What stands above the report")->type_name("TEXT");
    command.callback([&selection, request] { report(selection, request->file, request->title); });
}

}  // namespace tool
