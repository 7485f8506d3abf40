#pragma once

#include <charconv>
#include <string_view>
#include <system_error>

namespace tool {

/// Reads a whole text as a decimal number, whatever digit it starts with.
template <typename Number>
bool readDecimal(std::string_view text, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && behind == end;
}

}  // namespace tool
