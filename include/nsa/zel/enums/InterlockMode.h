#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace tqbase2::nsa::zel::enums {

/// How an opened interlock is dealt with.
enum class InterlockMode : std::int32_t { Interactive = 0, Automatic = 1 };

/// How each value is spelled in JSON text. Stored in parameter records: append, never change.
inline constexpr std::array<std::string_view, 2> interlockModeSpellings{"interactive", "automatic"};

}  // namespace tqbase2::nsa::zel::enums
