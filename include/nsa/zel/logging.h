#pragma once

#include <tqbase2/system/log/detail.h>

/// The library's use of the platform logger: one channel, four levels.
namespace tqbase2::nsa::zel::logging {

/// Where all its lines go.
inline constexpr const char* channel = "libTqZelLogbook";

inline constexpr unsigned int trace = 1;        ///< each description made
inline constexpr unsigned int information = 2;  ///< fetch, clear, information entries
inline constexpr unsigned int warning = 3;      ///< unreadable stored entries, warning entries
inline constexpr unsigned int error = 4;        ///< conversion failures, failed descriptions, error entries

}  // namespace tqbase2::nsa::zel::logging
