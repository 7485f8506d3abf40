#pragma once

#include "LostRange.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace standalone {

/// "3 to 7, 9"
std::string textOf(const std::vector<LostRange>& ranges);

/// The gaps in the numbers of a logbook, oldest first. Records count up without any other.
class LostRanges {
public:
    LostRanges() = default;

    /// @param ascending ranges that don't overlap
    explicit LostRanges(std::vector<LostRange> ascending) : ranges(std::move(ascending)) {}

    const std::vector<LostRange>& all() const { return ranges; }

    /// The number of the record that stands so many records before that of number `newest`.
    std::int64_t before(std::int64_t newest, std::int64_t records) const;

    /// How many records there are from one number to another, both included.
    std::int64_t recordsBetween(std::int64_t oldest, std::int64_t newest) const;

    bool holds(std::int64_t number) const;

    /// The newest number that was ever given out.
    std::int64_t newest(std::int64_t newestRecord) const;

private:
    std::vector<LostRange> ranges;
};

}  // namespace standalone
