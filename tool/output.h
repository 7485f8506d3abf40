#pragma once

#include "logbooks.h"
#include "writeFile.h"

#include <string>

namespace tool {

/// Lets a file be written as writeFile does, or standard output when its name is empty.
/// @throws CLI::ValidationError for a file of the logbooks themselves, be they made or not
/// @throws std::runtime_error naming the file and the reason when it can't be written
void writeOutput(const Selection& selection, const std::string& file, const Writer& write);

}  // namespace tool
