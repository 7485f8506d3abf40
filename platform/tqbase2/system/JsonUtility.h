#pragma once

#include <json/value.h>

#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace tqbase2::system {

/// JSON values to text and back. The text's layout is the platform's; what toJsonString writes toJsonValue reads.
class JsonUtility {
public:
    static std::string toJsonString(const Json::Value& value);

    /// @throws Exception for text that is not JSON
    static Json::Value toJsonValue(std::string_view text);
};

}  // namespace tqbase2::system

#pragma GCC visibility pop
