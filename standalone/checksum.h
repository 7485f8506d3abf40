#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace standalone {

/// What tells one logbook from all others, drawn by lot when it is made.
using LogbookId = std::array<unsigned char, 16>;

/// A record under its number, as it is stored.
struct NumberedRecord {
    std::int64_t number;
    std::int64_t seconds;
    std::int64_t nanoseconds;
    std::string_view time;
    std::string_view json;
};

/// The check value stored with each record: CRC-32 over its number, its time, both texts and the id of its logbook, so
/// that no bit of a record changes unnoticed and no record passes for another. A persistent format.
std::uint32_t checksum(const NumberedRecord& record, const LogbookId& id);

/// The check value of what the file of a logbook says of itself. A persistent format.
std::uint32_t checksum(const LogbookId& id, std::int64_t capacity, std::int64_t cleared);

}  // namespace standalone
