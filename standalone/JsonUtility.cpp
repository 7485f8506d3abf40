#include "JsonReader.h"
#include "JsonWriter.h"

#include <tqbase2/system/JsonUtility.h>

#include <cstddef>

namespace tqbase2::system {

std::string JsonUtility::toJsonString(const Json::Value& value) {
    constexpr std::size_t usualSize = 250;
    std::string text;
    text.reserve(usualSize);
    standalone::appendJson(text, value);
    return text;
}

Json::Value JsonUtility::toJsonValue(std::string_view text) {
    Json::Value value;
    const bool blank = text.find_first_not_of(" \t\r\n") == std::string_view::npos;
    if (!blank && !standalone::readPlainJson(text, value)) {
        value = standalone::readJson(text);
    }
    return value;
}

}  // namespace tqbase2::system
