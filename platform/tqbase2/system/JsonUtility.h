#pragma once

#include <json/value.h>

#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace tqbase2::system {

/// JSON values to text and back. The text's layout is the platform's; what toJsonString writes toJsonValue reads.
/// Must be safe from any thread.
class JsonUtility {
public:
    /// Keeps every integer in all its 64 bits and every byte of a string.
    static std::string toJsonString(const Json::Value& value);

    /// The value of a text; the empty text reads as null.
    /// @throws Exception for text that is not JSON
    static Json::Value toJsonValue(std::string_view text);
};

}  // namespace tqbase2::system

#pragma GCC visibility pop
