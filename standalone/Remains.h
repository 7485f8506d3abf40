#pragma once

#include "LogbookHead.h"
#include "LostRanges.h"
#include "RecordScan.h"

#include <cstdint>
#include <vector>

namespace standalone {

/// What a damaged logbook still holds.
struct Remains {
    LogbookHead head;
    std::vector<std::int64_t> numbers;  ///< of its records, ascending
    std::vector<std::int64_t> removed;  ///< of records that had been dropped or cleared, but lie there still
    LostRanges lost;
    std::vector<LostRange> newlyLost;  ///< those of them that were not known before
};

/// @param capacity of a logbook that doesn't tell its own any more
Remains remainsOf(const RecordScan& scan, std::int64_t capacity);

}  // namespace standalone
