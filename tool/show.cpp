#include "commands.h"
#include "filter.h"
#include "listing.h"
#include "logbooks.h"
#include "terminal.h"
#include "validators.h"
#include "words.h"

#include <standalone/LogbookReader.h>
#include <standalone/errors.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace tool {

namespace {

/// What the command line asks to be shown.
struct Request {
    unsigned int offset = 0;
    std::optional<unsigned int> count;
    bool all = false;
    std::optional<std::int64_t> after;
    bool oldestFirst = false;
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
    return request.all ? noLimit : request.count.value_or(request.after ? noLimit : usualCount);
}

/// What was left out, by the reason for it.
using LeftOut = std::map<Standing, std::int64_t>;

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
        std::cerr << "tqzel-logbook: not shown: " << entries(count) << " (" << nameOf(standing)
                  << "); --raw shows them\n";
    }
}

/// Whether nobody said how many, so that it has to be told that there are more.
bool isUsualPage(const Request& request) {
    return !request.follow && !request.all && !request.count && !request.after && request.offset == 0;
}

/// What came of a page.
struct Page {
    bool isEmpty = true;
    LeftOut leftOut;
    std::int64_t newest = 0;  ///< the highest number that was seen
    bool hasMore = false;     ///< only looked for where it has to be told
};

void tell(const Page& page) {
    tell(page.leftOut);
    if (page.hasMore) {
        std::cerr << "tqzel-logbook: these are the newest " << usualCount << "; --all shows every one\n";
    }
}

/// Whether what stands behind so many entries is on the page.
bool isOnPage(std::uint64_t entriesBefore, const Request& request, unsigned int most) {
    return entriesBefore >= request.offset && entriesBefore < std::uint64_t{request.offset} + most;
}

/// Shows a page: counted from the newest entry, also when the oldest one of it comes first.
Page showPage(standalone::LogbookReader& reader, const Selection& selection, const Request& request, Listing& listing) {
    const unsigned int most = mostOf(request);
    const bool turnsRound = request.oldestFirst && (most != noLimit || request.offset > 0);
    const Order order{request.oldestFirst && !turnsRound, request.after.value_or(0), true};
    Page page;
    std::uint64_t wanted = 0;
    std::deque<ReadEntry> turned;
    const auto put = [&](ReadEntry&& read) {
        page.isEmpty = false;
        if (turnsRound) {
            turned.push_front(std::move(read));
        } else {
            listing.add(read);
        }
    };
    forEachEntry(reader, order, isService(selection), [&](ReadEntry&& read) {
        page.newest = std::max(page.newest, read.number);
        if (read.standing == Standing::Lost) {  // no entry that counts
            if (isOnPage(wanted, request, most) && request.filter.matches(read)) {
                put(std::move(read));
            }
            return true;
        }
        if (wanted == std::uint64_t{request.offset} + most) {
            LeftOut older;
            page.hasMore = isUsualPage(request) && isWanted(read, request, older);
            return isUsualPage(request) && !page.hasMore;
        }
        if (!isWanted(read, request, page.leftOut) || ++wanted <= request.offset) {
            return true;
        }
        put(std::move(read));
        return true;
    });
    for (const ReadEntry& read : turned) {
        listing.add(read);
    }
    listing.end();
    return page;
}

/// Tells when a logbook may have been written to: cheaper than to open it.
class Watch {
public:
    explicit Watch(std::filesystem::path logbook) : file(std::move(logbook)) {}

    /// Whether it may have been since the last call; the first time: yes.
    bool hasChanged() {
        const Writings found{writingOf(file), writingOf(file.string() + "-wal")};
        if (found == seen) {
            return false;
        }
        // What is written to again so soon may keep its time, which some media count in steps of two seconds.
        const auto settled = std::filesystem::file_time_type::clock::now() - std::chrono::seconds(3);
        seen = found.first.time < settled && found.second.time < settled ? std::optional(found) : std::nullopt;
        return true;
    }

private:
    struct Writing {
        std::filesystem::file_time_type time;
        std::uintmax_t size;

        bool operator==(const Writing& other) const { return time == other.time && size == other.size; }
    };

    using Writings = std::pair<Writing, Writing>;

    static Writing writingOf(const std::filesystem::path& file) {
        std::error_code none;  // such as that there is no log
        return {std::filesystem::last_write_time(file, none), std::filesystem::file_size(file, none)};
    }

    std::filesystem::path file;
    std::optional<Writings> seen;
};

/// Whether it is no longer the logbook with that id, which is empty at first and then its own.
bool isAnother(standalone::LogbookReader& reader, std::string& id) {
    const std::string known = std::exchange(id, reader.description().id);
    return !known.empty() && known != id;
}

/// Shows the newest entries, then each that comes.
class Following {
public:
    Following(const Selection& wanted, Request asked) : selection(wanted), request(std::move(asked)) {
        request.oldestFirst = true;
        request.look.goesOn = true;
    }

    void showNew() {
        try {
            show();
            trouble.clear();
        } catch (const standalone::DatabaseError& error) {
            if (!listing) {
                throw;
            }
            if (std::exchange(trouble, error.what()) != error.what()) {  // another process may put it right
                std::cerr << "tqzel-logbook: " << printable(error.what()) << "; waiting until it can be read\n";
            }
        }
    }

    /// Whether what is there could not be read.
    bool isInTrouble() const { return !trouble.empty(); }

private:
    void show() {
        if (listing && !isThere(selection)) {
            return;  // deleted, until somebody makes it anew
        }
        standalone::LogbookReader reader(fileOf(selection));
        const bool isNotTheOneBefore = isAnother(reader, id);
        if (!listing) {
            listing = createListing(request.format, request.look);  // begins to write
        }
        if (isNotTheOneBefore) {
            std::cerr << "tqzel-logbook: another logbook has taken its place, from its first entry on:\n";
            request.after.reset();
        }
        const Page page = showPage(reader, selection, request, *listing);
        listing->flush();
        if (!std::cout) {
            throw std::runtime_error("can't write to standard output");
        }
        tell(page.leftOut);
        request.after = std::max(page.newest, request.after.value_or(0));
        request.count = noLimit;
    }

    const Selection& selection;
    Request request;
    std::unique_ptr<Listing> listing;
    std::string id;
    std::string trouble;  // that was told
};

[[noreturn]] void follow(const Selection& selection, Request request) {
    Following following(selection, std::move(request));
    for (Watch watch(fileOf(selection));; std::this_thread::sleep_for(std::chrono::milliseconds(300))) {
        if (watch.hasChanged() || following.isInTrouble()) {
            following.showNew();
        }
    }
}

Page showInPager(const Selection& selection, const Request& request) {
    standalone::LogbookReader reader(fileOf(selection));
    const Pager pager(request.format == "table" && !request.noPager);
    return showPage(reader, selection, request, *createListing(request.format, request.look));
}

void show(const Selection& selection, Request request) {
    if (request.follow && request.format == "json") {
        throw CLI::ValidationError("--follow", "what goes on has no end, as json needs one; jsonl does not");
    }
    requirePeriod(request.filter);
    request.look.coloured = isColoured(request.colour);
    request.look.width = terminalWidth();
    request.look.isSeen = isTerminal();
    if (request.follow) {
        follow(selection, std::move(request));
    }
    const Page page = showInPager(selection, request);
    tell(page);  // not into the page that the pager shows
    if (page.isEmpty && page.leftOut.empty() && request.format == "table") {
        std::cerr << "tqzel-logbook: there is no such entry\n";
    }
}

}  // namespace

void declareShow(CLI::App& app, Selection& selection) {
    CLI::App& command = *app.add_subcommand("show", "Show a logbook in words, newest entry first");
    const auto request = std::make_shared<Request>();
    declareLogbook(command, selection);
    takeNumber(command.add_option("--offset", request->offset, "Entries to skip, 0 unless given"), noLimit);
    takeNumber(command.add_option("--count", request->count, "Most entries to show; unless given 20, with --after all"),
               noLimit);
    command.add_flag("--all", request->all, "Show every entry")->excludes("--offset")->excludes("--count");
    takeNumber(
        command.add_option("--after", request->after, "Only entries with numbers above, to go on where one left off"),
        std::numeric_limits<std::int64_t>::max());
    command.add_flag("--reverse", request->oldestFirst, "Oldest entry first");
    command.add_flag("--follow", request->follow, "Then show new entries as they come, until interrupted")
        ->excludes("--offset")
        ->excludes("--all");
    declareFilter(command, request->filter);
    command.get_option("--follow")->excludes("--until");
    takeOneOf(command.add_option("--format", request->format, "How to show them, table unless given"),
              listingFormats());
    command.add_flag("--raw", request->look.raw, "With code and parameters; also what the logbook leaves out, and why");
    command.add_flag("--utc", request->look.utc, "Times in UTC, else as they were when the entry was made");
    takeOneOf(command.add_option("--color", request->colour,
                                 "Colour types, auto unless given: on a terminal without $NO_COLOR"),
              {"auto", "always", "never"});
    command.add_flag("--no-pager", request->noPager, "Don't show page by page, also on a terminal");
    command.callback([&selection, request] { show(selection, *request); });
}

}  // namespace tool
