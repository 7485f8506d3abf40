#include "JsonReader.h"

#include "errors.h"

#include <json/reader.h>
#include <rapidjson/reader.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace standalone {

namespace {

// What the library writes is nested twice. Deeper texts are refused before they exhaust the stack.
constexpr int deepestNesting = 100;

std::unique_ptr<Json::CharReader> makeReader() {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["strictRoot"] = false;     // a bare string or number is a value too
    builder["rejectDupKeys"] = false;  // the last one counts, as everywhere
    builder["skipBom"] = false;
    builder["stackLimit"] = deepestNesting;
    return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

void replaceAll(std::string& text, std::string_view part, std::string_view by) {
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size())) {
        text.replace(at, part.size(), by);
    }
}

/// "* Line 1, Column 2\n  Missing '}' or object member name\n" on one line.
std::string oneLine(std::string errors) {
    replaceAll(errors, "\n  ", ": ");
    replaceAll(errors, "\n", " ");
    replaceAll(errors, "* ", "");
    errors.erase(errors.find_last_not_of(' ') + 1);
    return errors;
}

// For one thread at a time. The reader holds its settings, which cost more to make than a small text costs to read. All
// threads share it: what is made for each has its end noted by the C library, which ends the program when there is no
// memory to.
std::mutex reading;

constexpr std::size_t longestPlainText = 1024;
constexpr std::size_t deepestPlainNesting = 8;

// What entries are full of: jsoncpp takes two copies of any other key.
constexpr std::array<std::string_view, 11> usualKeys{
    "code", "description", "details", "type", "device", "generation", "params", "unit", "bus", "module", "service"};

/// The key in a place that lasts, or null.
const char* usualKey(std::string_view key) {
    for (const std::string_view usual : usualKeys) {
        if (usual == key) {
            return usual.data();
        }
    }
    return nullptr;
}

/// Makes a value of what RapidJSON finds in a text; each function answers whether to go on.
class Builder {
public:
    explicit Builder(Json::Value& root) : place(&root) {}

    bool Null() { return put(Json::Value()); }

    bool Bool(bool value) { return put(Json::Value(value)); }

    bool Int(int value) { return put(Json::Value(Json::Int64{value})); }

    bool Uint(unsigned int value) { return put(Json::Value(Json::Int64{value})); }

    bool Int64(std::int64_t value) { return put(Json::Value(Json::Int64{value})); }

    /// What fits into a signed integer is one.
    bool Uint64(std::uint64_t value) {
        return put(value <= Json::UInt64{INT64_MAX} ? Json::Value(static_cast<Json::Int64>(value))
                                                    : Json::Value(Json::UInt64{value}));
    }

    /// Rounded as jsoncpp does only by jsoncpp.
    bool Double(double) { return false; }

    bool RawNumber(const char*, rapidjson::SizeType, bool) { return false; }

    bool String(const char* text, rapidjson::SizeType size, bool) { return put(Json::Value(text, text + size)); }

    bool StartObject() { return open(Json::objectValue); }

    bool Key(const char* text, rapidjson::SizeType size, bool) {
        Json::Value& object = *containers[depth - 1];
        const char* const key = usualKey({text, size});
        place = key != nullptr ? &object[Json::StaticString(key)] : object.demand(text, text + size);
        return true;
    }

    bool EndObject(rapidjson::SizeType) { return close(); }

    bool StartArray() { return open(Json::arrayValue); }

    bool EndArray(rapidjson::SizeType) { return close(); }

private:
    /// Where the next value goes: to the root or the last key, or behind what an array has.
    Json::Value& next() {
        if (depth != 0 && containers[depth - 1]->isArray()) {
            return containers[depth - 1]->append(Json::nullValue);
        }
        return *place;
    }

    /// The rest of a value, its comments and offsets, is as empty as that of the place.
    bool put(Json::Value&& value) {
        next().swapPayload(value);
        return true;
    }

    bool open(Json::ValueType type) {
        if (depth == containers.size()) {
            return false;
        }
        Json::Value& opened = next();
        Json::Value container(type);
        opened.swapPayload(container);
        containers[depth++] = &opened;
        return true;
    }

    bool close() {
        --depth;
        return true;
    }

    Json::Value* place;
    std::array<Json::Value*, deepestPlainNesting> containers{};
    std::size_t depth = 0;
};

}  // namespace

Json::Value readJson(std::string_view text) {
    // jsoncpp takes one for the end, and would believe what stands before it, whatever follows.
    if (const std::size_t zero = text.find('\0'); zero != std::string_view::npos) {
        throw JsonError("not JSON: byte " + std::to_string(zero + 1) + " is zero");
    }
    const std::lock_guard lock(reading);
    static const std::unique_ptr<Json::CharReader> reader = makeReader();
    Json::Value value;
    std::string errors;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &value, &errors)) {
            return value;
        }
    } catch (const Json::Exception& exception) {
        errors = exception.what();
    }
    throw JsonError("not JSON: " + oneLine(errors));
}

// In place, on a copy: so RapidJSON needs no memory, of which it could not say that there is none.
bool readPlainJson(std::string_view text, Json::Value& value) {
    if (text.size() > longestPlainText) {
        return false;
    }
    std::array<char, longestPlainText + 1> copy;
    copy[text.copy(copy.data(), text.size())] = '\0';
    rapidjson::InsituStringStream stream(copy.data());
    rapidjson::Reader reader;
    Builder builder(value);
    const bool read = !reader.Parse<rapidjson::kParseInsituFlag>(stream, builder).IsError();
    return read && stream.Tell() == text.size();  // it takes a zero byte for the end, too
}

}  // namespace standalone
