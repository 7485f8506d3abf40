#pragma once

#include <string_view>

namespace standalone {

/// Writes a line with the time and its level to standard error. Any thread may.
/// @param level the library's, 1 (trace) to 4 (error); higher ones count as 4
void logLine(unsigned int level, std::string_view line);

}  // namespace standalone
