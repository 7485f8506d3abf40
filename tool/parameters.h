#pragma once

#include <CLI/CLI.hpp>

#include <json/value.h>

#include <string>

namespace tool {

/// The parameter record of an entry, as told by options.
struct Parameters {
    Json::Value members;  ///< one for each option given, such as "bus" for --bus
    std::string json;     ///< what --params gave
};

/// Declares an option for each member that messages read, and --params for the whole record.
void declareParameters(CLI::App& command, Parameters& parameters);

/// The text of the record: the members of --params, and those of the options, which win; empty when there are none.
/// @throws CLI::ValidationError when --params is not a JSON object
std::string recordText(const Parameters& parameters);

}  // namespace tool
