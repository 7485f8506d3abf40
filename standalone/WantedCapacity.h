#pragma once

#include "SqliteDatabaseFactory.h"

#include <cstdint>

namespace standalone {

/// How many records a logbook is to keep.
struct WantedCapacity {
    std::uint32_t records;  ///< 0: unlimited
    Capacity meaning;
};

}  // namespace standalone
