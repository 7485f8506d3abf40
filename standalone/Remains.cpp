#include "Remains.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

namespace standalone {

namespace {

std::int64_t now() {
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

using RangesByFirst = std::multimap<std::int64_t, LostRange>;

RangesByFirst byFirst(const std::vector<LostRange>& ranges) {
    RangesByFirst all;
    for (const LostRange& range : ranges) {
        all.emplace(range.first, range);
    }
    return all;
}

/// Numbers that are not there. What was known to be lost keeps the time at which it was found.
void addLost(Remains& remains, std::vector<LostRange>& all, std::int64_t first, std::int64_t last,
             const RangesByFirst& known) {
    const auto [begin, end] = known.equal_range(first);
    const auto same = std::find_if(begin, end, [last](const auto& range) { return range.second.last == last; });
    all.push_back(same == end ? LostRange{first, last, now()} : same->second);
    if (same == end) {
        remains.newlyLost.push_back(all.back());
    }
}

/// Of what looks like ranges known to be lost those that can be: without a record, and apart.
LostRanges knownLost(const RecordScan& scan, const std::vector<std::int64_t>& numbers, const RangesByFirst& perhaps) {
    std::vector<LostRange> known;
    for (const auto& [first, range] : perhaps) {
        const auto next = std::lower_bound(numbers.begin(), numbers.end(), first);
        const bool isEmpty = next == numbers.end() || *next > range.last;
        const bool isApart = known.empty() || first > known.back().last;
        if (first > 0 && range.last >= first && range.last <= scan.newestKnown() && isEmpty && isApart) {
            known.push_back(range);
        }
    }
    return LostRanges(std::move(known));
}

/// The oldest number that a full logbook keeps; where it is not known how many are lost, rather an old record too many.
std::int64_t oldestInFull(const RecordScan& scan, std::int64_t capacity, const RangesByFirst& perhapsLost) {
    const std::vector<std::int64_t> numbers = scan.numbers();
    if (scan.knowsLost()) {
        return knownLost(scan, numbers, perhapsLost).before(scan.newestKnown(), capacity - 1);
    }
    const auto kept =
        static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(numbers.size(), static_cast<std::uint64_t>(capacity)));
    return kept == 0 ? 1 : *(numbers.end() - kept);
}

/// The oldest number that was not dropped or cleared, as far as that can be told.
std::int64_t oldestKept(const RecordScan& scan, const LogbookHead& head, const RangesByFirst& perhapsLost) {
    const auto oldest = scan.oldest();
    const bool needsNoCount = head.capacity == 0 || (oldest && scan.isTreeTheNewest());
    const std::int64_t inFull = needsNoCount ? 1 : oldestInFull(scan, head.capacity, perhapsLost);
    return std::max({head.cleared + 1, inFull, oldest.value_or(1)});
}

}  // namespace

Remains remainsOf(const RecordScan& scan, std::int64_t capacity) {
    Remains remains;
    const auto newest = scan.newest();
    remains.head = scan.head().value_or(LogbookHead{scan.id() ? *scan.id() : newId(), capacity, 0});
    if (!newest) {
        remains.head.id = newId();  // numbers begin anew
        remains.head.cleared = 0;
        remains.removed = scan.numbers();
        return remains;
    }
    std::vector<LostRange> lost;
    const RangesByFirst perhapsLost = byFirst(scan.perhapsLost());
    std::int64_t expected = oldestKept(scan, remains.head, perhapsLost);
    for (const std::int64_t number : scan.numbers()) {
        if (number < expected) {
            remains.removed.push_back(number);
            continue;
        }
        if (number > expected) {
            addLost(remains, lost, expected, number - 1, perhapsLost);
        }
        remains.numbers.push_back(number);
        expected = number + 1;
    }
    if (expected <= *newest) {
        addLost(remains, lost, expected, *newest, perhapsLost);
    }
    remains.lost = LostRanges(std::move(lost));
    return remains;
}

}  // namespace standalone
