#pragma once

#include <lgb/Code.h>
#include <lgb/catalogue.h>

#include <string>
#include <vector>

namespace tool {

/// The message of a code.
/// @throws CLI::ValidationError when there is none, naming `argument`, and the code by `name`
lgb::catalogue::Message messageOf(const lgb::code::Code& code, const std::string& argument, const std::string& name);

/// The message as it is shown, its places with their names.
std::string wordingOf(const lgb::catalogue::Message& message);

/// The members that a message reads, each once: two places may read the same.
std::vector<lgb::catalogue::Place> membersOf(const lgb::catalogue::Message& message);

}  // namespace tool
