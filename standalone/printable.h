#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace standalone {

struct CharacterRange {
    std::uint32_t first;
    std::uint32_t last;
};

// What is no character; what steers a terminal; what has no width or turns the direction of writing; what ends a line.
inline constexpr CharacterRange harmfulCharacters[] = {{0, 0x1f},        {0x7f, 0x9f},     {0x61c, 0x61c},
                                                       {0x200b, 0x200f}, {0x2028, 0x202e}, {0x2060, 0x206f},
                                                       {0xd800, 0xdfff}, {0xfeff, 0xfeff}, {0x110000, UINT32_MAX}};

/// Whether a character, told by its number in Unicode, may be shown as it is.
inline bool isHarmless(std::uint32_t code) {
    return std::none_of(std::begin(harmfulCharacters), std::end(harmfulCharacters),
                        [code](const CharacterRange& range) { return code >= range.first && code <= range.last; });
}

/// A text as it may be shown: stored texts may hold anything, and control characters would break its line, steer the
/// terminal, turn what follows around or hide, so they and bytes that are no UTF-8 are shown as \x0a and the like.
std::string printable(std::string_view text);

/// The same of no more than 1 KB of a text: of a longer one its beginning, how much was left out, and its end, which in
/// a message says what is wrong.
std::string printableExtract(std::string_view text);

}  // namespace standalone
