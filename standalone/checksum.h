#pragma once

#include <lgb/IDatabase.h>

#include <cstdint>

namespace standalone {

/// The check value stored with each record: CRC-32 over its number, its time and both texts, so that no bit of a record
/// changes unnoticed and no record passes for another. A persistent format.
std::uint32_t checksum(std::int64_t number, const lgb::DatabaseRecord& record);

}  // namespace standalone
