#include "checksum.h"

#include <zlib.h>

#include <array>
#include <cstddef>

namespace standalone {

namespace {

constexpr std::size_t wordSize = 8;

template <std::size_t count>
using Words = std::array<unsigned char, count * wordSize>;

/// The same bytes on every machine.
template <std::size_t count>
Words<count> inBytes(const std::array<std::uint64_t, count>& words) {
    Words<count> bytes{};
    unsigned char* next = bytes.data();
    for (std::uint64_t word : words) {
        for (unsigned char* const end = next + wordSize; next != end; word >>= 8) {
            *next++ = static_cast<unsigned char>(word);
        }
    }
    return bytes;
}

uLong extended(uLong state, std::string_view text) {
    return text.empty() ? state : crc32_z(state, reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

template <std::size_t size>
uLong extended(uLong state, const std::array<unsigned char, size>& bytes) {
    return crc32_z(state, bytes.data(), size);
}

}  // namespace

// The length of each text before it: a byte that moves from one text to the next is a change. The id comes last, so
// that what it adds is the same for all records of a logbook, and known from any two of them when the id is lost.
std::uint32_t checksum(const NumberedRecord& record, const LogbookId& id) {
    const auto& [number, seconds, nanoseconds, time, json] = record;
    uLong state = extended(0, inBytes<4>({static_cast<std::uint64_t>(number), static_cast<std::uint64_t>(seconds),
                                          static_cast<std::uint64_t>(nanoseconds), time.size()}));
    state = extended(state, time);
    state = extended(state, inBytes<1>({json.size()}));
    state = extended(state, json);
    return static_cast<std::uint32_t>(extended(state, id));
}

std::uint32_t checksum(const LogbookId& id, std::int64_t capacity, std::int64_t cleared) {
    const uLong state =
        extended(0, inBytes<2>({static_cast<std::uint64_t>(capacity), static_cast<std::uint64_t>(cleared)}));
    return static_cast<std::uint32_t>(extended(state, id));
}

}  // namespace standalone
