#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace tool {

/// What is wrong with a command line and what was expected instead, in one sentence.
/// @param app that refused it
std::string explainWrongUse(const CLI::App& app, const CLI::ParseError& error);

}  // namespace tool
