#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tqbase2::nsa::zel::enums {

/// The spelling of a value from the array whose index is the value; empty for a number outside the enumeration.
template <typename Enum, std::size_t Count>
constexpr std::string_view spelling(const std::array<std::string_view, Count>& spellings, Enum value) {
    const auto index = static_cast<std::uint32_t>(value);  // a negative number becomes one far above the range
    return index < Count ? spellings[index] : std::string_view();
}

}  // namespace tqbase2::nsa::zel::enums
