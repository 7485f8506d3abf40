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

/// The record: the members of --params, and those of the options, which win; null when there are none.
/// @throws CLI::ValidationError when --params is not a JSON object
Json::Value recordOf(const Parameters& parameters);

/// The option for a member of the record: "--operating-class" for "operatingClass".
/// @throws std::logic_error, here and below, for a key that no message reads
std::string optionFor(const std::string& key);

/// What a member of the record must be, such as "a number from 0 to 4294967295"; empty when it is.
std::string expectedInstead(const std::string& key, const Json::Value& value);

}  // namespace tool
