#pragma once

#include "checksum.h"

#include <cstdint>

namespace standalone {

/// What the file of a logbook says of itself.
struct LogbookHead {
    LogbookId id{};
    std::int64_t capacity = 0;  ///< in records; 0: unlimited
    std::int64_t cleared = 0;   ///< the last number given out before everything was removed
};

/// An id drawn by lot.
LogbookId newId();

// Beyond any number that is ever reached, and far enough from where numbers end.
inline constexpr std::int64_t highestNumber = std::int64_t{1} << 62;

/// Whether a logbook may say that of itself, whatever its check value says.
inline bool isPossible(const LogbookHead& head) {
    return head.cleared >= 0 && head.cleared < highestNumber && head.capacity >= 0 && head.capacity <= UINT32_MAX;
}

}  // namespace standalone
