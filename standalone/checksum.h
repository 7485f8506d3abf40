#pragma once

#include <cstdint>
#include <string_view>

namespace standalone {

/// A record under its number, as it is stored.
struct NumberedRecord {
    std::int64_t number;
    std::int64_t seconds;
    std::int64_t nanoseconds;
    std::string_view time;
    std::string_view json;
};

/// The check value stored with each record: CRC-32 over its number, its time and both texts, so that no bit of a record
/// changes unnoticed and no record passes for another. A persistent format.
std::uint32_t checksum(const NumberedRecord& record);

}  // namespace standalone
