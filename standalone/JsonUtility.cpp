#include "errors.h"

#include <tqbase2/system/JsonUtility.h>

#include <json/reader.h>
#include <json/writer.h>
#include <boost/algorithm/string/replace.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <memory>
#include <mutex>
#include <sstream>

namespace tqbase2::system {

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

std::unique_ptr<Json::StreamWriter> makeWriter() {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;  // else bytes that are not UTF-8 do not come back
    return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

/// "* Line 1, Column 2\n  Missing '}' or object member name\n" on one line.
std::string oneLine(std::string errors) {
    boost::algorithm::replace_all(errors, "\n  ", ": ");
    boost::algorithm::replace_all(errors, "\n", " ");
    boost::algorithm::replace_all(errors, "* ", "");
    boost::algorithm::trim(errors);
    return errors;
}

// For one thread at a time.
std::mutex writing;
std::mutex reading;

}  // namespace

// Reader and writer hold their settings, which cost more to make than a small text costs to read. All threads share
// them: what is made for each has its end noted by the C library, which ends the program when there is no memory to.

std::string JsonUtility::toJsonString(const Json::Value& value) {
    const std::lock_guard lock(writing);
    static const std::unique_ptr<Json::StreamWriter> writer = makeWriter();
    std::ostringstream text;
    text.exceptions(std::ios_base::badbit);  // else running out of memory would only cut the text
    writer->write(value, &text);
    return text.str();
}

Json::Value JsonUtility::toJsonValue(std::string_view text) {
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) {
        return {};
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
    throw standalone::JsonError("not JSON: " + oneLine(errors));
}

}  // namespace tqbase2::system
