#pragma once

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>

// Puts an allocator that can run dry in front of the C library's, for the whole program and all libraries it loads:
// operator new, SQLite and jsoncpp alike. For programs that link Shortage.cpp and use one thread.

namespace support {

/// How often the program has asked for memory and what it was answered.
struct MemorySupply {
    static constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();

    std::int64_t live = 0;   ///< blocks that have not been given back
    std::int64_t bytes = 0;  ///< in these
    std::int64_t mostBytes = 0;
    bool isShort = false;
    std::uint64_t asked = 0;    ///< during the last shortage
    std::uint64_t refused = 0;  ///< of these
    std::uint64_t firstRefused = never;
    std::uint64_t lastRefused = never;

    bool grants() {
        if (!isShort) {
            return true;
        }
        ++asked;
        if (asked < firstRefused || asked > lastRefused) {
            return true;
        }
        ++refused;
        errno = ENOMEM;
        return false;
    }

    /// @param difference in bytes that are in use
    void use(std::int64_t difference) {
        bytes += difference;
        mostBytes = std::max(mostBytes, bytes);
    }
};

inline MemorySupply memorySupply;

/// While it lasts, some requests for memory are refused: none, when the first is never.
class Shortage {
public:
    /// @param first, last requests that are refused, counting from 1
    Shortage(std::uint64_t first, std::uint64_t last) {
        memorySupply = {memorySupply.live, memorySupply.bytes, memorySupply.bytes, true, 0, 0, first, last};
    }

    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;

    ~Shortage() { memorySupply.isShort = false; }
};

}  // namespace support
