#pragma once

#include <nsa/zel/enums/spelling.h>

#include <array>
#include <cstdint>
#include <ostream>
#include <string_view>

namespace tqbase2::nsa::zel::enums {

/// Product model named in entries of the first generation.
enum class TypeProduct : std::int32_t { Osprey = 0, Plover = 1, Wren = 2, Kestrel = 3 };

/// How each value is spelled in JSON text. Stored in parameter records: append, never change.
inline constexpr std::array<std::string_view, 4> typeProductSpellings{"Osprey", "Plover", "Wren", "Kestrel"};

/// Writes the spelling; nothing for a number outside the enumeration.
inline std::ostream& operator<<(std::ostream& stream, TypeProduct value) {
    return write(stream, spelling(typeProductSpellings, value));
}

}  // namespace tqbase2::nsa::zel::enums
