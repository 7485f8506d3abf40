#pragma once

#include "TemporaryFolder.h"

#include <sys/wait.h>

#include <cstdlib>
#include <string>

namespace support {

struct Outcome {
    int exitCode;
    std::string output;
    std::string errors;
};

/// Runs a shell command to its end.
inline Outcome run(const std::string& command) {
    const TemporaryFolder folder;
    const std::string output = folder / "output";
    const std::string errors = folder / "errors";
    const int status = std::system(("{ " + command + "; } >" + output + " 2>" + errors).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(output), contentOf(errors)};
}

}  // namespace support
