#include "timeline.h"

#include "durations.h"

#include <algorithm>
#include <cstddef>
#include <ctime>

namespace tool {

namespace {

constexpr std::int64_t lengths[] = {minute, 5 * minute, 15 * minute, hour,     2 * hour, 6 * hour, 12 * hour,
                                    day,    2 * day,    4 * day,     2 * week, 4 * week, 8 * week, 26 * week};

constexpr std::int64_t fewestParts = 12;
constexpr std::int64_t mostParts = 40;

/// Beyond this no calendar goes, and sums would overflow.
constexpr std::int64_t farthest = std::int64_t{1} << 56;

std::int64_t nearEnough(std::int64_t seconds) {
    return std::clamp(seconds, -farthest, farthest);
}

/// The last moment not after `seconds` at which a part may begin: midnight, a full hour and the like in local time.
std::int64_t beginOf(std::int64_t seconds, std::int64_t length) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm local{};
    const std::int64_t offset = localtime_r(&time, &local) == nullptr ? 0 : std::int64_t{local.tm_gmtoff};
    const std::int64_t behind = (seconds + offset) % length;
    return seconds - (behind < 0 ? behind + length : behind);
}

std::int64_t partsBetween(std::int64_t first, std::int64_t last, std::int64_t length) {
    return (last - beginOf(first, length)) / length + 1;
}

std::int64_t lengthFor(std::int64_t first, std::int64_t last) {
    const auto* const found = std::find_if(std::begin(lengths), std::end(lengths), [&](std::int64_t length) {
        return partsBetween(first, last, length) <= mostParts;
    });
    if (found != std::end(lengths)) {
        return *found;
    }
    std::int64_t length = 2 * *std::rbegin(lengths);
    while (partsBetween(first, last, length) > mostParts) {
        length *= 2;
    }
    return length;
}

}  // namespace

Span spanOf(const std::vector<Moment>& moments) {
    const auto [earliest, latest] =
        std::minmax_element(moments.begin(), moments.end(),
                            [](const Moment& one, const Moment& other) { return one.seconds < other.seconds; });
    return {earliest->seconds, latest->seconds};
}

Timeline timelineOf(const std::vector<Moment>& moments) {
    if (moments.empty()) {
        return {};
    }
    const Span span = spanOf(moments);
    const std::int64_t first = nearEnough(span.first);
    const std::int64_t last = nearEnough(span.last);
    Timeline timeline;
    timeline.length = lengthFor(first, last);
    const std::int64_t parts = partsBetween(first, last, timeline.length);
    const std::int64_t before = std::max<std::int64_t>(0, fewestParts - parts) / 2;
    timeline.first = beginOf(first, timeline.length) - before * timeline.length;
    timeline.parts.resize(static_cast<std::size_t>(std::max(parts, fewestParts)));
    for (const Moment& moment : moments) {
        const std::int64_t part = (nearEnough(moment.seconds) - timeline.first) / timeline.length;
        ++timeline.parts[static_cast<std::size_t>(part)][static_cast<std::size_t>(moment.type)];
    }
    return timeline;
}

}  // namespace tool
