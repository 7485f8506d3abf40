#pragma once

#include <CLI/CLI.hpp>

namespace tool {

/// Lets the tool and its commands, present and to come, answer --help in our form.
void setHelp(CLI::App& app);

}  // namespace tool
