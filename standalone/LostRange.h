#pragma once

#include <cstdint>

namespace standalone {

/// Numbers that damage took.
struct LostRange {
    std::int64_t first;
    std::int64_t last;
    std::int64_t found;  ///< when, in seconds since 1970-01-01T00:00:00Z
};

}  // namespace standalone
