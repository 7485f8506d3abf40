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

}  // namespace standalone
