#pragma once

#include <string>
#include <string_view>

namespace standalone {

/// A text as it may be shown: stored texts may hold anything, and control characters would break its line, steer the
/// terminal, turn what follows around or hide, so they and bytes that are no UTF-8 are shown as \x0a and the like.
std::string printable(std::string_view text);

/// The same of no more than 1 KB of a text: of a longer one its beginning, how much was left out, and its end, which in
/// a message says what is wrong.
std::string printableExtract(std::string_view text);

}  // namespace standalone
