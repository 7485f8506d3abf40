#pragma once

#include <functional>
#include <ostream>
#include <string>

namespace tool {

/// Writes to a stream; is told whether that is seen on a terminal.
using Writer = std::function<void(std::ostream&, bool isSeen)>;

/// Lets a file be written anew, with the rights of the caller. What stood in it before stays until all of the new is
/// safe on the disk. Its owner and permissions stay as they are, but never setuid and the like; where the owner can't
/// stay, it may be no more than a new file. What is no file to replace, a device, a pipe or what another program has
/// open, such as /dev/stdout, is written to as it is. A link that belongs to somebody else is not followed.
/// @throws std::runtime_error naming the file and the reason when it can't be written
void writeFile(const std::string& file, const Writer& write);

}  // namespace tool
