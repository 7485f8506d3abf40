#pragma once

#include <lgb/IDatabase.h>

#include <ostream>
#include <string>

namespace tool {

// A line of an export is a JSON object with the seconds, the nanoseconds and the text of the time, and the entry's
// document. A text that is no UTF-8 stands as hexadecimal digits, under its key with "Hex" behind it.

/// @param seen on a terminal, which no text must steer
void writeExportLine(std::ostream& stream, bool seen, const lgb::DatabaseRecord& record);

/// @param text a line of an export
/// @throws std::exception saying what is wrong with it
lgb::DatabaseRecord recordOf(const std::string& text);

}  // namespace tool
