#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace tqbase2::nsa::zel::enums {

/// What a system configuration entry describes.
enum class SystemConfigRole : std::int32_t { Unit = 0, Device = 1 };

/// How each value is spelled in JSON text. Stored in parameter records: append, never change.
inline constexpr std::array<std::string_view, 2> systemConfigRoleSpellings{"unit", "device"};

}  // namespace tqbase2::nsa::zel::enums
