#pragma once

#include "checksum.h"

#include <cstddef>
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

/// Of the texts of a record: what claims more is none, and nobody makes more of one in memory.
inline constexpr std::size_t mostRecordBytes = std::size_t{1} << 20;

/// Of all that a record takes in a file.
inline constexpr std::size_t mostRowBytes = mostRecordBytes + 256;

/// Whether a logbook may say that of itself, whatever its check value says.
inline bool isPossible(const LogbookHead& head) {
    return head.cleared >= 0 && head.cleared < highestNumber && head.capacity >= 0 && head.capacity <= UINT32_MAX;
}

}  // namespace standalone
