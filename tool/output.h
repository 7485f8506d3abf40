#pragma once

#include "logbooks.h"

#include <functional>
#include <ostream>
#include <string>

namespace tool {

/// Lets a file be written anew, or standard output when its name is empty. A file that could not be written whole is
/// left as it was.
/// @throws CLI::ValidationError for a file of the logbooks themselves
/// @throws std::runtime_error naming the file and the reason when it can't be written
void writeOutput(const Selection& selection, const std::string& file, const std::function<void(std::ostream&)>& write);

}  // namespace tool
