#pragma once

#include <cstdint>
#include <string>

namespace tool {

/// From one second to another since 1970-01-01T00:00:00Z, both included.
struct Span {
    std::int64_t first;
    std::int64_t last;
};

/// The time a text speaks of: a day, a minute or a second of ISO 8601, local unless it ends in Z or +hh:mm; "now",
/// "today", "yesterday"; "2 hours ago". A day without a zone lasts from midnight to midnight, and what the clock shows
/// twice in the night when it is put back lasts from the first time to the second.
/// @param now seconds since 1970-01-01T00:00:00Z
/// @throws std::invalid_argument saying what was expected
Span spanOf(const std::string& text, std::int64_t now);

/// Seconds since 1970-01-01T00:00:00Z.
std::int64_t now();

/// "2026-11-21 18:02:11 +0000"
std::string utc(std::int64_t seconds);

/// "2026-11-21T18:02:11.000000250Z"; without a fraction for whole seconds
std::string iso8601(std::int64_t seconds, std::int64_t nanoseconds);

/// "2026-11-21 19:02" in local time.
std::string localMinute(std::int64_t seconds);

/// "2026-11-21 19:02:11" in local time.
std::string localSecond(std::int64_t seconds);

/// "2026-11-21 19:02 +0100" in local time.
std::string localZonedMinute(std::int64_t seconds);

/// From one time to a later one, or as much of it as there is a number for: clocks and foreign files may say anything.
std::int64_t secondsBetween(std::int64_t first, std::int64_t last);

/// "2 h 3 min", the two largest units, from days on.
std::string duration(std::int64_t seconds);

}  // namespace tool
