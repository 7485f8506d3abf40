#pragma once

#include <cstdint>
#include <string>

#pragma GCC visibility push(default)

/// The platform's clock.
namespace lgb::timestamp {

/// A moment as the platform's clock gives it. The library copies it whole and never looks inside.
struct Timestamp {
    std::int64_t seconds = 0;      ///< since 1970-01-01T00:00:00Z
    std::int64_t nanoseconds = 0;  ///< 0 to 999999999
    std::string text;              ///< the same moment as the platform shows it
};

/// The current time. Called once for each entry that is made; must be safe from any thread.
Timestamp now();

}  // namespace lgb::timestamp

#pragma GCC visibility pop
