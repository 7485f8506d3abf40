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

/// Numbers that are not there. What was known to be lost keeps the time at which it was found.
void addLost(Remains& remains, std::vector<LostRange>& all, std::int64_t first, std::int64_t last,
             const std::vector<LostRange>& known) {
    const auto same = std::find_if(known.begin(), known.end(),
                                   [&](const LostRange& range) { return range.first == first && range.last == last; });
    all.push_back(same == known.end() ? LostRange{first, last, now()} : *same);
    if (same == known.end()) {
        remains.newlyLost.push_back(all.back());
    }
}

/// Of what looks like ranges known to be lost those that can be: without a record, and apart.
LostRanges knownLost(const RecordScan& scan, const std::vector<std::int64_t>& numbers) {
    std::multimap<std::int64_t, LostRange> ranges;
    for (const LostRange& range : scan.perhapsLost()) {
        ranges.emplace(range.first, range);
    }
    std::vector<LostRange> known;
    for (const auto& [first, range] : ranges) {
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
std::int64_t oldestInFull(const RecordScan& scan, std::int64_t capacity) {
    const std::vector<std::int64_t> numbers = scan.numbers();
    if (scan.knowsLost()) {
        return knownLost(scan, numbers).before(scan.newestKnown(), capacity - 1);
    }
    const auto kept =
        static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(numbers.size(), static_cast<std::uint64_t>(capacity)));
    return kept == 0 ? 1 : *(numbers.end() - kept);
}

/// The oldest number that was not dropped or cleared, as far as that can be told.
std::int64_t oldestKept(const RecordScan& scan, const LogbookHead& head) {
    const std::int64_t inFull = head.capacity == 0 ? 1 : oldestInFull(scan, head.capacity);
    return std::max({head.cleared + 1, inFull, scan.oldest().value_or(1)});
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
    std::int64_t expected = oldestKept(scan, remains.head);
    for (const std::int64_t number : scan.numbers()) {
        if (number < expected) {
            remains.removed.push_back(number);
            continue;
        }
        if (number > expected) {
            addLost(remains, lost, expected, number - 1, scan.perhapsLost());
        }
        remains.numbers.push_back(number);
        expected = number + 1;
    }
    if (expected <= *newest) {
        addLost(remains, lost, expected, *newest, scan.perhapsLost());
    }
    remains.lost = LostRanges(std::move(lost));
    return remains;
}

}  // namespace standalone
