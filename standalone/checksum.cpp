#include "checksum.h"

#include <zlib.h>

#include <array>
#include <cstddef>

namespace standalone {

namespace {

constexpr std::size_t wordSize = 8;

/// The same bytes on every machine.
unsigned char* put(unsigned char* bytes, std::uint64_t word) {
    for (unsigned char* const end = bytes + wordSize; bytes != end; word >>= 8) {
        *bytes++ = static_cast<unsigned char>(word);
    }
    return bytes;
}

uLong extended(uLong state, std::string_view text) {
    return text.empty() ? state : crc32_z(state, reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

}  // namespace

// The length of each text before it: a byte that moves from one text to the next is a change.
std::uint32_t checksum(const NumberedRecord& record) {
    std::array<unsigned char, 4 * wordSize> head{};
    unsigned char* end = put(head.data(), static_cast<std::uint64_t>(record.number));
    end = put(end, static_cast<std::uint64_t>(record.seconds));
    end = put(end, static_cast<std::uint64_t>(record.nanoseconds));
    put(end, record.time.size());
    std::array<unsigned char, wordSize> length{};
    put(length.data(), record.json.size());

    uLong state = extended(crc32_z(0, head.data(), head.size()), record.time);
    state = extended(crc32_z(state, length.data(), length.size()), record.json);
    return static_cast<std::uint32_t>(state);
}

}  // namespace standalone
