// Any bytes as JSON text, and as a string within a JSON value.

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
    fuzz::require(parsed(JsonUtility::toJsonString(value)) == value, "a value comes back from its text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    if (const auto value = parsed(bytes)) {
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
