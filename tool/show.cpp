#include "commands.h"
#include "filter.h"
#include "listing.h"
#include "logbooks.h"
#include "terminal.h"
#include "validators.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace tool {

namespace {

constexpr std::chrono::milliseconds followInterval(300);

/// What the command line asks to be shown.
struct Request {
    unsigned int offset = 0;
    std::optional<unsigned int> count;
    bool all = false;
    Order order;
    bool follow = false;
    Filter filter;
    Look look;
    std::string format = "table";
    std::string colour = "auto";
    bool noPager = false;
};

constexpr unsigned int usualCount = 20;
constexpr unsigned int noLimit = std::numeric_limits<unsigned int>::max();

/// Most entries to show. Who goes on where one left off wants all there is since.
unsigned int mostOf(const Request& request) {
    return request.all ? noLimit : request.count.value_or(request.order.after > 0 ? noLimit : usualCount);
}

/// What was left out, by the reason for it.
using LeftOut = std::map<Standing, int>;

bool isWanted(const ReadEntry& read, const Request& request, LeftOut& leftOut) {
    const bool matches = request.filter.matches(read);
    if (matches && read.standing != Standing::Shown && !request.look.raw) {
        ++leftOut[read.standing];
        return false;
    }
    return matches;
}

/// Nothing is hidden without a word.
void tell(const LeftOut& leftOut) {
    for (const auto& [standing, count] : leftOut) {
        std::cerr << "tqzel-logbook: not shown: " << count << (count == 1 ? " entry" : " entries") << " ("
                  << nameOf(standing) << "); --raw shows them\n";
    }
}

/// Shows a page: counted from the newest entry, also when the oldest one of it comes first.
LeftOut showPage(standalone::LogbookReader& reader, const Selection& selection, const Request& request,
                 Listing& listing) {
    const unsigned int most = mostOf(request);
    const bool turnsRound = request.order.oldestFirst && (most != noLimit || request.offset > 0);
    const Order order{request.order.oldestFirst && !turnsRound, request.order.after};
    LeftOut leftOut;
    std::uint64_t wanted = 0;
    std::deque<ReadEntry> turned;
    forEachEntry(reader, order, isService(selection), [&](ReadEntry&& read) {
        if (wanted == std::uint64_t{request.offset} + most) {
            return false;
        }
        if (!isWanted(read, request, leftOut) || ++wanted <= request.offset) {
            return true;
        }
        if (turnsRound) {
            turned.push_front(std::move(read));
        } else {
            listing.add(read);
        }
        return true;
    });
    for (const ReadEntry& read : turned) {
        listing.add(read);
    }
    listing.end();
    return leftOut;
}

/// Shows the newest entries, then each that comes, until interrupted.
[[noreturn]] void follow(const Selection& selection, const Request& request, Listing& listing) {
    Order order{true, request.order.after};
    std::size_t most = mostOf(request);
    while (true) {
        standalone::LogbookReader reader(fileOf(selection));  // anew, as others may only now begin to use the file
        LeftOut leftOut;
        std::deque<ReadEntry> newest;
        forEachEntry(reader, order, isService(selection), [&](ReadEntry&& read) {
            order.after = read.number;
            if (isWanted(read, request, leftOut)) {
                newest.push_back(std::move(read));
            }
            if (newest.size() > most) {
                newest.pop_front();
            }
            return true;
        });
        for (const ReadEntry& read : newest) {
            listing.add(read);
        }
        listing.flush();
        if (!std::cout) {
            throw std::runtime_error("can't write to standard output");
        }
        tell(leftOut);
        most = noLimit;
        std::this_thread::sleep_for(followInterval);
    }
}

LeftOut showInPager(standalone::LogbookReader& reader, const Selection& selection, const Request& request) {
    const Pager pager(request.format == "table" && !request.noPager);
    return showPage(reader, selection, request, *createListing(request.format, request.look));
}

void show(const Selection& selection, Request request) {
    if (request.follow && request.format == "json") {
        throw CLI::ValidationError("--follow", "what goes on has no end, as json needs one; jsonl does not");
    }
    standalone::LogbookReader reader(fileOf(selection));
    request.look.coloured = isColoured(request.colour);
    request.look.width = terminalWidth();
    if (request.follow) {
        request.look.goesOn = true;
        follow(selection, request, *createListing(request.format, request.look));
    }
    tell(showInPager(reader, selection, request));  // not into the page that the pager shows
}

}  // namespace

void declareShow(CLI::App& app, Selection& selection) {
    CLI::App& command = *app.add_subcommand("show", "Show a logbook in words, newest entry first");
    const auto request = std::make_shared<Request>();
    declareLogbook(command, selection);
    takeNumber(command.add_option("--offset", request->offset, "Entries to skip, 0 unless given"), noLimit);
    takeNumber(command.add_option("--count", request->count, "Most entries to show, 20 unless given"), noLimit);
    command.add_flag("--all", request->all, "Show every entry")->excludes("--offset")->excludes("--count");
    takeNumber(command.add_option("--after", request->order.after,
                                  "Only entries with numbers above, to go on where one left off"),
               std::numeric_limits<std::int64_t>::max());
    command.add_flag("--reverse", request->order.oldestFirst, "Oldest entry first");
    command.add_flag("--follow", request->follow, "Then show new entries as they come, until interrupted")
        ->excludes("--offset")
        ->excludes("--all");
    declareFilter(command, request->filter);
    takeOneOf(command.add_option("--format", request->format, "How to show them, table unless given"), listingFormats);
    command.add_flag("--raw", request->look.raw, "With code and parameters; also what the logbook leaves out, and why");
    command.add_flag("--utc", request->look.utc, "Times in UTC, else as they were when the entry was made");
    takeOneOf(command.add_option("--color", request->colour,
                                 "Colour types, auto unless given: on a terminal without $NO_COLOR"),
              {"auto", "always", "never"});
    command.add_flag("--no-pager", request->noPager, "Don't show page by page, also on a terminal");
    command.callback([&selection, request] { show(selection, *request); });
}

}  // namespace tool
