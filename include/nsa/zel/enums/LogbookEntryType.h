#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace tqbase2::nsa::zel::enums {

/// Kind (severity) of an entry.
enum class LogbookEntryType : std::int32_t { Info = 0, Warning = 1, Error = 2 };

/// How each value is spelled in JSON text. Stored with every entry: append, never change.
inline constexpr std::array<std::string_view, 3> logbookEntryTypeSpellings{"I", "W", "E"};

}  // namespace tqbase2::nsa::zel::enums
