#pragma once

#include <string>

namespace standalone {

/// Those of the logger.
enum class Level : unsigned int { Warning = 3, Error = 4 };

/// A line on the platform's own channel, if that level is enabled.
void report(Level level, const std::string& line);

}  // namespace standalone
