#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace tqbase2::nsa::zel::enums {

/// Output mode of an RF path: Vswr for high VSWR, Power for high power, and nine steps between them.
enum class OutputMode : std::int32_t {
    Vswr = 0,
    Increased1 = 1,
    Increased2 = 2,
    Increased3 = 3,
    Increased4 = 4,
    Increased5 = 5,
    Increased6 = 6,
    Increased7 = 7,
    Increased8 = 8,
    Increased9 = 9,
    Power = 10,
};

/// How each value is spelled in JSON text. Stored in parameter records: append, never change.
inline constexpr std::array<std::string_view, 11> outputModeSpellings{
    "VSWR",       "increased1", "increased2", "increased3", "increased4", "increased5",
    "increased6", "increased7", "increased8", "increased9", "Power"};

}  // namespace tqbase2::nsa::zel::enums
