#pragma once

#include "moments.h"

#include <nsa/zel/enums/LogbookEntryType.h>

#include <array>
#include <cstdint>
#include <vector>

namespace tool {

/// When an entry was made, and of which type it is.
struct Moment {
    std::int64_t seconds;  ///< since 1970-01-01T00:00:00Z
    tqbase2::nsa::zel::enums::LogbookEntryType type;
};

/// The time that entries span, in parts of one length, without gaps.
struct Timeline {
    using Part = std::array<std::int64_t, 3>;  ///< how many entries; index is the type

    std::int64_t first = 0;   ///< when the first part begins, in seconds since 1970-01-01T00:00:00Z
    std::int64_t length = 0;  ///< of a part in seconds, a round number of minutes, hours, days or weeks
    std::vector<Part> parts;
};

/// From the earliest moment to the latest.
/// @param moments in any order, at least one
Span spanOf(const std::vector<Moment>& moments);

/// @param moments in any order; none make no parts
Timeline timelineOf(const std::vector<Moment>& moments);

}  // namespace tool
