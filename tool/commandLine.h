#pragma once

namespace tool {

/// Does what the command line says, on standard input, output and error.
/// @return the exit code: 0; 1 for a failure; 2 for wrong use
int run(int argc, const char* const* argv);

}  // namespace tool
