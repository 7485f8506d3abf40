#include "JsonWriter.h"

#include <json/writer.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace standalone {

namespace {

template <typename Integer>
void appendInteger(std::string& text, Integer value) {
    std::array<char, 20> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    text.append(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

void appendEscaped(std::string& text, char character) {
    constexpr std::string_view escaped = "\"\\\b\f\n\r\t";
    constexpr std::string_view letters = "\"\\bfnrt";
    constexpr std::string_view digits = "0123456789abcdef";
    const std::size_t index = escaped.find(character);
    if (index != std::string_view::npos) {
        text += '\\';
        text += letters[index];
        return;
    }
    const auto byte = static_cast<unsigned char>(character);
    text += "\\u00";
    text += digits[byte >> 4];
    text += digits[byte & 15];
}

/// Of each byte, whether it can't stand in a string as it is.
constexpr std::array<bool, 256> makeEscaped() {
    constexpr std::size_t firstPrintable = 0x20;
    std::array<bool, 256> isEscaped{};
    for (std::size_t byte = 0; byte < firstPrintable; ++byte) {
        isEscaped[byte] = true;
    }
    isEscaped['"'] = true;
    isEscaped['\\'] = true;
    return isEscaped;
}

void appendString(std::string& text, const char* begin, const char* end) {
    static constexpr std::array<bool, 256> isEscaped = makeEscaped();
    text += '"';
    for (const char* plain = begin; begin != end; plain = begin) {
        while (begin != end && !isEscaped[static_cast<unsigned char>(*begin)]) {
            ++begin;
        }
        text.append(plain, static_cast<std::size_t>(begin - plain));
        if (begin != end) {
            appendEscaped(text, *begin++);
        }
    }
    text += '"';
}

void appendArray(std::string& text, const Json::Value& array) {
    text += '[';
    for (Json::ArrayIndex index = 0; index < array.size(); ++index) {
        if (index != 0) {
            text += ',';
        }
        appendJson(text, array[index]);
    }
    text += ']';
}

void appendObject(std::string& text, const Json::Value& object) {
    text += '{';
    const auto first = object.begin();
    const auto last = object.end();
    for (auto member = first; member != last; ++member) {
        if (member != first) {
            text += ',';
        }
        const char* end = nullptr;
        const char* const key = member.memberName(&end);
        appendString(text, key, end);
        text += ':';
        appendJson(text, *member);
    }
    text += '}';
}

}  // namespace

void appendJson(std::string& text, const Json::Value& value) {
    switch (value.type()) {
        case Json::nullValue:
            text += "null";
            break;
        case Json::booleanValue:
            text += value.asBool() ? "true" : "false";
            break;
        case Json::intValue:
            appendInteger(text, value.asInt64());
            break;
        case Json::uintValue:
            appendInteger(text, value.asUInt64());
            break;
        case Json::realValue:
            text += Json::valueToString(value.asDouble());
            break;
        case Json::stringValue: {
            const char* begin = nullptr;
            const char* end = nullptr;
            value.getString(&begin, &end);
            appendString(text, begin, end);
            break;
        }
        case Json::arrayValue:
            appendArray(text, value);
            break;
        case Json::objectValue:
            appendObject(text, value);
            break;
    }
}

}  // namespace standalone
