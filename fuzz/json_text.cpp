// Any bytes as JSON text, and as a string within a JSON value.

#include "jsoncpp.h"
#include "require.h"

#include <tqbase2/cia/StringConverter.h>
#include <tqbase2/system/Exception.h>
#include <tqbase2/system/JsonUtility.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace {

using tqbase2::cia::StringConverter;
using tqbase2::system::JsonUtility;

std::optional<Json::Value> parsed(const std::string& text) {
    try {
        return JsonUtility::toJsonValue(text);
    } catch (const tqbase2::system::Exception&) {
        return std::nullopt;
    }
}

void requireToComeBack(const Json::Value& value) {
    const std::string text = JsonUtility::toJsonString(value);
    fuzz::require(text == support::writtenByJsoncpp(value), "a value is written as by jsoncpp");
    fuzz::require(parsed(text) == value, "a value comes back from its text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    const auto value = parsed(bytes);
    const bool blank = bytes.find_first_not_of(" \t\r\n") == std::string::npos;  // reads as null
    fuzz::require(blank || value == support::readByJsoncpp(bytes), "a text is read as by jsoncpp");
    if (value) {
        requireToComeBack(*value);
    }
    const Json::Value text = StringConverter::fromValToJsonValue(bytes);
    fuzz::require(StringConverter::fromJsonToVal(text) == bytes, "a string comes back from its JSON value");
    requireToComeBack(text);

    Json::Value nested;
    nested[bytes].append(text);
    requireToComeBack(nested);
    return 0;
}
