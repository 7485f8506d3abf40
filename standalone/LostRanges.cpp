#include "LostRanges.h"

#include <algorithm>

namespace standalone {

std::string textOf(const std::vector<LostRange>& ranges) {
    std::string text;
    for (const LostRange& range : ranges) {
        if (!text.empty()) {
            text += ", ";
        }
        text += std::to_string(range.first);
        if (range.last != range.first) {
            text += " to " + std::to_string(range.last);
        }
    }
    return text;
}

std::int64_t LostRanges::before(std::int64_t newest, std::int64_t records) const {
    std::int64_t number = newest;
    for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
        if (range->last > number) {
            continue;  // newer than all that counts
        }
        const std::int64_t newer = number - range->last;
        if (records < newer) {
            break;
        }
        records -= newer;
        number = range->first - 1;
    }
    return number - records;
}

std::int64_t LostRanges::recordsBetween(std::int64_t oldest, std::int64_t newest) const {
    std::int64_t records = newest - oldest + 1;
    for (const LostRange& range : ranges) {
        if (range.first >= oldest && range.last <= newest) {
            records -= range.last - range.first + 1;
        }
    }
    return records;
}

bool LostRanges::holds(std::int64_t number) const {
    return std::any_of(ranges.begin(), ranges.end(),
                       [&](const LostRange& range) { return number >= range.first && number <= range.last; });
}

std::int64_t LostRanges::newest(std::int64_t newestRecord) const {
    return ranges.empty() ? newestRecord : std::max(newestRecord, ranges.back().last);
}

}  // namespace standalone
