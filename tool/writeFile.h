#pragma once

#include <functional>
#include <ostream>
#include <string>

namespace tool {

using Writer = std::function<void(std::ostream&)>;

/// Lets a file be written anew. What stood in it before stays until all of the new is safe on the disk, and its
/// permissions stay as they are. What is no file to replace, a device, a pipe or what another program has open, such as
/// /dev/stdout, is written to as it is.
/// @throws std::runtime_error naming the file and the reason when it can't be written
void writeFile(const std::string& file, const Writer& write);

}  // namespace tool
