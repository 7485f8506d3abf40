#pragma once

#include <cstddef>
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

/// SQLite's running sum over a log whose numbers begin with their highest byte.
class LogSum {
public:
    /// @return the sum as it is stored, after these bytes too
    std::string over(const std::string& bytes) {
        for (std::size_t at = 0; at < bytes.size(); at += 8) {
            first += numberAt(bytes, at) + second;
            second += numberAt(bytes, at + 4) + first;
        }
        return bytesOf(first) + bytesOf(second);
    }

private:
    static std::uint32_t numberAt(const std::string& bytes, std::size_t at) {
        std::uint32_t number = 0;
        for (const char byte : bytes.substr(at, 4)) {
            number = number << 8 | static_cast<unsigned char>(byte);
        }
        return number;
    }

    std::uint32_t first = 0;
    std::uint32_t second = 0;
};

/// A log that is sound to SQLite, of one frame: the first page, which says that the database has so many.
inline std::string logClaiming(std::uint32_t pages, std::string firstPage) {
    constexpr std::size_t pagesAt = 28;
    firstPage.replace(pagesAt, 4, bytesOf(pages));
    const std::string salts = bytesOf(1) + bytesOf(2);
    const std::string begin = bytesOf(0x377f0683) + bytesOf(3007000) +
                              bytesOf(static_cast<std::uint32_t>(firstPage.size())) + bytesOf(0) + salts;
    LogSum sum;
    const std::string log = begin + sum.over(begin);
    const std::string frame = bytesOf(1) + bytesOf(pages);
    sum.over(frame);
    return log + frame + salts + sum.over(firstPage) + firstPage;
}

}  // namespace support
