#pragma once

#include <json/value.h>

#include <string>

#pragma GCC visibility push(default)

namespace tqbase2::cia {

/// Strings to JSON values and back: every string, any byte included, comes back identical.
class StringConverter {
public:
    static Json::Value fromValToJsonValue(const std::string& value);
    static std::string fromJsonToVal(const Json::Value& value);
};

}  // namespace tqbase2::cia

#pragma GCC visibility pop
