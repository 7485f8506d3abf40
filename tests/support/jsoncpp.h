#pragma once

#include <json/reader.h>
#include <json/value.h>
#include <json/writer.h>

#include <memory>
#include <optional>
#include <string>

/// What jsoncpp's own reader and writer make of a text and a value: what the platform's are held against. But a zero
/// byte, which it takes for the end, is nowhere JSON.
namespace support {

inline std::unique_ptr<Json::CharReader> makeJsoncppReader() {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["strictRoot"] = false;
    builder["rejectDupKeys"] = false;
    builder["skipBom"] = false;
    builder["stackLimit"] = 100;
    return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

/// Nothing for a text that it refuses. For one thread at a time.
inline std::optional<Json::Value> readByJsoncpp(const std::string& text) {
    static const std::unique_ptr<Json::CharReader> reader = makeJsoncppReader();
    if (text.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    Json::Value value;
    std::string errors;
    try {
        if (!reader->parse(text.data(), text.data() + text.size(), &value, &errors)) {
            return std::nullopt;
        }
    } catch (const Json::Exception&) {
        return std::nullopt;
    }
    return value;
}

inline std::string writtenByJsoncpp(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value);
}

}  // namespace support
