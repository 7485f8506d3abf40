#pragma once

#include "interface.h"

#include <string>
#include <vector>

namespace tool {

/// Uses of a command; of the tool itself for an empty name.
std::vector<Example> examplesOf(const std::string& command);

}  // namespace tool
