#pragma once

#include <json/value.h>

#include <string>

#pragma GCC visibility push(default)

/// Conversions that the platform supplies.
namespace tqbase2::cia {

/// Strings to JSON values and back: every string, any byte included, comes back identical. Must be safe from any
/// thread.
class StringConverter {
public:
    /// A JSON string.
    static Json::Value fromValToJsonValue(const std::string& value);

    /// The text of a JSON string; null, as which a missing member reads, is the empty text.
    static std::string fromJsonToVal(const Json::Value& value);
};

}  // namespace tqbase2::cia

#pragma GCC visibility pop
