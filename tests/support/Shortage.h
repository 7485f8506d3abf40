#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

// Puts an allocator that can run dry in front of the C library's, for the whole program and all libraries it loads:
// operator new, SQLite and jsoncpp alike. To be included by one source of a program; for one thread. An address
// sanitizer brings an allocator of its own and does not bear another.

namespace support {

/// How often the program has asked for memory and what it was answered.
struct MemorySupply {
    static constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();

    std::int64_t live = 0;  ///< blocks that have not been given back
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

    void* count(void* block) {
        live += block != nullptr ? 1 : 0;
        return block;
    }
};

inline MemorySupply memorySupply;

/// While it lasts, some requests for memory are refused.
class Shortage {
public:
    /// @param first, last requests that are refused, counting from 1
    Shortage(std::uint64_t first, std::uint64_t last) { memorySupply = {memorySupply.live, true, 0, 0, first, last}; }

    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;

    ~Shortage() { memorySupply.isShort = false; }
};

}  // namespace support

extern "C" {

void* systemMalloc(std::size_t size) __asm__("__libc_malloc");
void* systemCalloc(std::size_t count, std::size_t size) __asm__("__libc_calloc");
void* systemRealloc(void* block, std::size_t size) __asm__("__libc_realloc");
void systemFree(void* block) __asm__("__libc_free");

#pragma GCC visibility push(default)

void* malloc(std::size_t size) noexcept {
    return support::memorySupply.grants() ? support::memorySupply.count(systemMalloc(size)) : nullptr;
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    return support::memorySupply.grants() ? support::memorySupply.count(systemCalloc(count, size)) : nullptr;
}

void free(void* block) noexcept {
    support::memorySupply.live -= block != nullptr ? 1 : 0;
    systemFree(block);
}

void* realloc(void* block, std::size_t size) noexcept {
    if (block == nullptr) {
        return malloc(size);
    }
    if (size == 0) {
        free(block);
        return nullptr;
    }
    return support::memorySupply.grants() ? systemRealloc(block, size) : nullptr;
}

#pragma GCC visibility pop

}  // extern "C"
