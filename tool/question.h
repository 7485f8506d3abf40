#pragma once

#include <string>

namespace tool {

/// Asks on standard output and reads the answer from standard input; "y" and "yes" agree.
/// @throws CLI::RequiredError when there is no answer
bool isAgreedTo(const std::string& question);

}  // namespace tool
