#pragma once

#include <string>
#include <string_view>

namespace standalone {

/// A text as it may be shown: stored texts may hold anything, and control characters would break its line or steer the
/// terminal, so they are shown as \x0a and the like.
inline std::string printable(std::string_view text) {
    constexpr const char* digits = "0123456789abcdef";
    std::string line;
    line.reserve(text.size());
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte == 0x7f) {
            line += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
        } else {
            line += character;
        }
    }
    return line;
}

}  // namespace standalone
