#include "exportLine.h"

#include "terminal.h"

#include <tqbase2/system/JsonUtility.h>

#include <fmt/format.h>
#include <json/value.h>
#include <boost/algorithm/hex.hpp>

#include <cstdint>
#include <iterator>
#include <stdexcept>

namespace tool {

using lgb::DatabaseRecord;
using tqbase2::system::JsonUtility;

namespace {

constexpr const char* secondsKey = "seconds";
constexpr const char* nanosecondsKey = "nanoseconds";
constexpr const char* timeKey = "time";
constexpr const char* entryKey = "entry";

void setText(Json::Value& line, const std::string& key, const std::string& text) {
    if (isUtf8(text)) {
        line[key] = text;
        return;
    }
    std::string digits;
    boost::algorithm::hex_lower(text, std::back_inserter(digits));
    line[key + "Hex"] = digits;
}

std::int64_t integerOf(const Json::Value& line, const char* key, std::int64_t least, std::int64_t most) {
    const Json::Value& value = line[key];
    if (!value.isInt64() || value.asInt64() < least || value.asInt64() > most) {
        throw std::invalid_argument(fmt::format("\"{}\" is no whole number from {} to {}", key, least, most));
    }
    return value.asInt64();
}

std::string textOf(const Json::Value& line, const std::string& key) {
    const Json::Value& text = line[key];
    const Json::Value& digits = line[key + "Hex"];
    if (text.isString() == digits.isString()) {
        throw std::invalid_argument(fmt::format("either \"{0}\" or \"{0}Hex\" must be a text", key));
    }
    if (text.isString()) {
        return text.asString();
    }
    std::string bytes;
    try {
        boost::algorithm::unhex(digits.asString(), std::back_inserter(bytes));
    } catch (const boost::algorithm::hex_decode_error&) {
        throw std::invalid_argument(fmt::format("\"{}Hex\" is not an even number of hexadecimal digits", key));
    }
    return bytes;
}

}  // namespace

void writeExportLine(std::ostream& stream, bool seen, const DatabaseRecord& record) {
    Json::Value line;
    line[secondsKey] = Json::Int64{record.timestamp.seconds};
    line[nanosecondsKey] = Json::Int64{record.timestamp.nanoseconds};
    setText(line, timeKey, record.timestamp.text);
    setText(line, entryKey, record.json);
    const std::string text = JsonUtility::toJsonString(line);
    stream << (seen ? printableJson(text) : text) << '\n';
}

DatabaseRecord recordOf(const std::string& text) {
    const Json::Value line = JsonUtility::toJsonValue(text);
    if (!line.isObject()) {
        throw std::invalid_argument(text.empty() ? "is empty" : "is no JSON object");
    }
    constexpr std::int64_t lastNanosecond = 999999999;
    return {{integerOf(line, secondsKey, INT64_MIN, INT64_MAX), integerOf(line, nanosecondsKey, 0, lastNanosecond),
             textOf(line, timeKey)},
            textOf(line, entryKey)};
}

}  // namespace tool
