#pragma once

#include <cstdint>
#include <numeric>
#include <string>

namespace support {

/// The bytes of a number, the highest first.
inline std::string bytesOf(std::uint32_t number) {
    std::string bytes;
    for (const unsigned int shift : {24U, 16U, 8U, 0U}) {
        bytes += static_cast<char>(number >> shift);
    }
    return bytes;
}

/// A rollback journal of no pages that names another, which SQLite deletes once it has rolled back.
inline std::string journalNaming(const std::string& another) {
    const std::string magic = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
    constexpr std::uint32_t sectorBytes = 512;
    constexpr std::uint32_t pageBytes = 1024;
    constexpr std::uint32_t pageOfLocks = 0x40000000 / pageBytes + 1;
    std::string journal = magic + bytesOf(0) + bytesOf(0) + bytesOf(1) + bytesOf(sectorBytes) + bytesOf(pageBytes);
    journal.resize(sectorBytes, '\0');
    const auto sum =
        std::accumulate(another.begin(), another.end(), std::uint32_t{0},
                        [](std::uint32_t all, char byte) { return all + static_cast<unsigned char>(byte); });
    return journal + bytesOf(pageOfLocks) + another + bytesOf(static_cast<std::uint32_t>(another.size())) +
           bytesOf(sum) + magic;
}

}  // namespace support
