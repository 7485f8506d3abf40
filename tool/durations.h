#pragma once

#include <cstdint>

namespace tool {

// In seconds.
inline constexpr std::int64_t minute = 60;
inline constexpr std::int64_t hour = 60 * minute;
inline constexpr std::int64_t day = 24 * hour;
inline constexpr std::int64_t week = 7 * day;

}  // namespace tool
