#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>

/// Enumerations of stored entries. Their numbers and spellings are persistent formats: append, never change.
namespace tqbase2::nsa::zel::enums {

/// The spelling of a value from the array whose index is the value; empty for a number outside the enumeration.
template <typename Enum, std::size_t Count>
constexpr std::string_view spelling(const std::array<std::string_view, Count>& spellings, Enum value) {
    const auto index = static_cast<std::uint32_t>(value);  // a negative number becomes one far above the range
    return index < Count ? spellings[index] : std::string_view();
}

/// Writes a spelling; nothing at all for an empty one, so that a width that the stream is set to waits for what
/// follows.
inline std::ostream& write(std::ostream& stream, std::string_view spelling) {
    return spelling.empty() ? stream : stream << spelling;
}

}  // namespace tqbase2::nsa::zel::enums
