#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace tqbase2::nsa::zel::enums {

/// Product generation whose message texts apply to an entry: Heron is the current one, and Unknown reads as Heron does.
/// An entry of Kestrel, the first, brings its message along.
enum class Generation : std::int32_t { Unknown = 0, Kestrel = 1, Heron = 2 };

/// How each value is spelled in JSON text. Stored with every entry: append, never change.
inline constexpr std::array<std::string_view, 3> generationSpellings{"Unknown", "Kestrel", "Heron"};

}  // namespace tqbase2::nsa::zel::enums
