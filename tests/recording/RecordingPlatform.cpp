#include "RecordingPlatform.h"

#include <businesslogic/zel/onOffStr.h>
#include <tqbase2/cia/StringConverter.h>
#include <tqbase2/system/JsonUtility.h>
#include <tqbase2/system/log/detail.h>

#include <json/reader.h>
#include <json/writer.h>

#include <algorithm>
#include <cstddef>
#include <memory>

namespace recording {

Platform& platform() {
    static Platform platform;
    return platform;
}

MemoryDatabase::~MemoryDatabase() {
    if (!name.empty()) {
        platform().databases.push_back("close " + name);
    }
}

std::vector<lgb::DatabaseRecord> MemoryDatabase::fetch(unsigned int offset, unsigned int count) {
    failWhenTold();
    onFetch();
    const std::size_t first = std::min<std::size_t>(offset, records.size());
    const std::size_t length = std::min<std::size_t>(count, records.size() - first);
    const auto begin = records.begin() + static_cast<std::ptrdiff_t>(first);
    return {begin, begin + static_cast<std::ptrdiff_t>(length)};
}

void MemoryDatabase::add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) {
    failWhenTold();
    records.insert(records.begin(), {timestamp, json});
}

void MemoryDatabase::clear() {
    failWhenTold();
    records.clear();
}

unsigned int MemoryDatabase::count() {
    failWhenTold();
    return static_cast<unsigned int>(records.size());
}

void MemoryDatabase::failWhenTold() const {
    if (fails) {
        throw Failure();
    }
}

}  // namespace recording

using recording::platform;

namespace lgb {

IDatabase::~IDatabase() = default;

DatabaseFactory::~DatabaseFactory() = default;

std::unique_ptr<IDatabase> DatabaseFactory::create(const char* name, std::uint32_t first, std::uint32_t second) const {
    if (platform().databaseThatFails == name) {
        throw recording::Failure();
    }
    platform().databases.push_back("open " + std::string(name) + ' ' + std::to_string(first) + ' ' +
                                   std::to_string(second));
    return std::make_unique<recording::MemoryDatabase>(name);
}

timestamp::Timestamp timestamp::now() {
    ++platform().clockReads;
    if (platform().clockFails) {
        throw recording::Failure();
    }
    return platform().time;
}

}  // namespace lgb

namespace tqbase2 {

std::string system::extractErrorMessage(const Exception& exception) {
    ++platform().errorMessagesExtracted;
    return std::string("extracted: ") + exception.what();
}

std::string system::JsonUtility::toJsonString(const Json::Value& value) {
    ++platform().jsonTextsWritten;
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value);
}

Json::Value system::JsonUtility::toJsonValue(std::string_view text) {
    ++platform().jsonTextsParsed;
    platform().onParse();
    if (text.empty() && platform().emptyTextIsNull) {
        return {};
    }
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["strictRoot"] = false;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) {
            return value;
        }
    } catch (const Json::Exception&) {  // nested too deeply
    }
    throw recording::JsonError();
}

Json::Value cia::StringConverter::fromValToJsonValue(const std::string& value) {
    return value;
}

std::string cia::StringConverter::fromJsonToVal(const Json::Value& value) {
    return value.asString();
}

bool system::log::detail::isEnabled(unsigned int level, const char* channel) {
    return level >= platform().lowestLevel && channel == std::string_view("libTqZelLogbook");
}

void system::log::detail::log(unsigned int level, const char* channel, const std::string& message) {
    platform().log.push_back({level, channel, message});
}

}  // namespace tqbase2

// Odd on purpose: the words are the platform's, and no text may know better.
std::string businesslogic::zel::onOffStr(bool on) {
    return on ? "aglow" : "dark";
}
