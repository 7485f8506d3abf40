#include "printable.h"

#include <cstddef>
#include <cstdint>

namespace standalone {

namespace {

/// The character a text starts with.
struct Character {
    std::size_t size;
    bool isHarmless;
};

constexpr Character strayByte{1, false};

bool continues(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80;
}

Character firstOf(std::string_view text) {
    // By the upper half of its first byte; 0: no character begins so.
    constexpr std::size_t sizes[] = {1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 2, 2, 3, 4};
    constexpr std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};  // what is less takes fewer bytes
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t size = sizes[lead / 16];
    if (size == 0 || size > text.size()) {
        return strayByte;
    }
    std::uint32_t code = lead & (0xffU >> size);
    for (const char byte : text.substr(1, size - 1)) {
        if (!continues(byte)) {
            return strayByte;
        }
        code = code << 6 | (static_cast<unsigned char>(byte) & 0x3fU);
    }
    return {size, code >= least[size] && isHarmless(code)};
}

/// Where a character begins, at a place or shortly before it; in what is no UTF-8 anywhere.
std::size_t boundary(std::string_view text, std::size_t at) {
    std::size_t begin = at;
    while (begin > at - 3 && continues(text[begin])) {
        --begin;
    }
    return begin;
}

}  // namespace

std::string printable(std::string_view text) {
    constexpr const char* digits = "0123456789abcdef";
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const Character character = firstOf(text);
        for (const char each : text.substr(0, character.size)) {
            const auto byte = static_cast<unsigned char>(each);
            if (character.isHarmless) {
                shown += each;
            } else {
                shown += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
            }
        }
        text.remove_prefix(character.size);
    }
    return shown;
}

std::string printableExtract(std::string_view text) {
    constexpr std::size_t most = 1024;
    constexpr std::size_t longestEnd = 256;
    if (text.size() <= most) {
        return printable(text);
    }
    const std::size_t first = boundary(text, most - longestEnd);
    const std::size_t last = boundary(text, text.size() - longestEnd);
    std::string shown = printable(text.substr(0, first));
    shown += "... and ";
    shown += std::to_string(last - first);
    shown += " more bytes ...";
    shown += printable(text.substr(last));
    return shown;
}

}  // namespace standalone
