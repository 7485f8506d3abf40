// The platform of a small device, whole: what libTqZelLogbook.so leaves undefined is defined here, in the order in
// which docs/porting.md builds it up. A real device puts its flash, its real-time clock and its own logger in these
// places.

#include <businesslogic/zel/onOffStr.h>
#include <lgb/DatabaseFactory.h>
#include <lgb/IDatabase.h>
#include <lgb/timestamp.h>
#include <tqbase2/cia/StringConverter.h>
#include <tqbase2/system/Exception.h>
#include <tqbase2/system/JsonUtility.h>
#include <tqbase2/system/log/detail.h>

#include <json/reader.h>
#include <json/writer.h>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <deque>
#include <iostream>
#include <memory>
#include <mutex>
#include <utility>

// Words.

std::string businesslogic::zel::onOffStr(bool on) {
    return on ? "on" : "off";
}

// Logger: level 4 is for errors. This device shows warnings and errors, on its one console.

bool tqbase2::system::log::detail::isEnabled(unsigned int level, const char*) {
    return level >= 3;
}

void tqbase2::system::log::detail::log(unsigned int level, const char* channel, const std::string& message) {
    std::cout << "[log " << level << ' ' << channel << "] " << message << '\n';
}

// Clock: seconds since 1970, and the same moment as the display shows it. This device has no battery. It starts at a
// fixed moment, and to keep its output the same, each look at the clock finds it a minute later.

lgb::timestamp::Timestamp lgb::timestamp::now() {
    static std::atomic<std::int64_t> next{1772388000};
    Timestamp time;
    time.seconds = next.fetch_add(60);
    const auto seconds = static_cast<std::time_t>(time.seconds);
    std::tm calendar{};
    gmtime_r(&seconds, &calendar);
    char text[sizeof "18:00"];
    time.text.assign(text, std::strftime(text, sizeof text, "%H:%M", &calendar));
    return time;
}

// JSON text. The library needs both directions to agree, and every byte of a text to come back as it was.

namespace {

class NotJson : public tqbase2::system::Exception {
public:
    explicit NotJson(std::string text) : reason(std::move(text)) {}

    const char* what() const noexcept override { return reason.c_str(); }

private:
    std::string reason;
};

Json::CharReaderBuilder readerSettings() {
    Json::CharReaderBuilder settings;
    settings["failIfExtra"] = true;
    settings["stackLimit"] = 100;
    return settings;
}

Json::StreamWriterBuilder writerSettings() {
    Json::StreamWriterBuilder settings;
    settings["indentation"] = "";
    settings["emitUTF8"] = true;
    return settings;
}

}  // namespace

std::string tqbase2::system::JsonUtility::toJsonString(const Json::Value& value) {
    static const Json::StreamWriterBuilder settings = writerSettings();
    return Json::writeString(settings, value);
}

Json::Value tqbase2::system::JsonUtility::toJsonValue(std::string_view text) {
    static const Json::CharReaderBuilder settings = readerSettings();
    Json::Value value;
    if (text.empty()) {
        return value;  // most messages have no parameters
    }
    if (text.find('\0') != std::string_view::npos) {
        throw NotJson("a zero byte");  // which jsoncpp takes for the end
    }
    std::string errors;
    try {
        const std::unique_ptr<Json::CharReader> reader(settings.newCharReader());
        if (reader->parse(text.data(), text.data() + text.size(), &value, &errors)) {
            return value;
        }
    } catch (const Json::Exception& exception) {
        errors = exception.what();  // nested too deeply
    }
    throw NotJson(errors);
}

Json::Value tqbase2::cia::StringConverter::fromValToJsonValue(const std::string& value) {
    return value;
}

std::string tqbase2::cia::StringConverter::fromJsonToVal(const Json::Value& value) {
    return value.asString();
}

std::string tqbase2::system::extractErrorMessage(const Exception& exception) {
    return exception.what();
}

// Database: newest first, of limited size. This one forgets when the device is switched off.

namespace {

class RingOfRecords : public lgb::IDatabase {
public:
    explicit RingOfRecords(std::size_t recordsKept) : capacity(recordsKept) {}

    std::vector<lgb::DatabaseRecord> fetch(unsigned int offset, unsigned int count) override {
        const std::lock_guard<std::mutex> lock(mutex);
        std::vector<lgb::DatabaseRecord> page;
        for (std::size_t i = offset; i < records.size() && page.size() < count; ++i) {
            page.push_back(records[i]);
        }
        return page;
    }

    void add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) override {
        const std::lock_guard<std::mutex> lock(mutex);
        records.push_front({timestamp, json});
        records.resize(std::min(records.size(), capacity));
    }

    void clear() override {
        const std::lock_guard<std::mutex> lock(mutex);
        records.clear();
    }

    unsigned int count() override {
        const std::lock_guard<std::mutex> lock(mutex);
        return static_cast<unsigned int>(records.size());
    }

private:
    std::mutex mutex;
    std::size_t capacity;
    std::deque<lgb::DatabaseRecord> records;
};

}  // namespace

namespace lgb {

IDatabase::~IDatabase() = default;

DatabaseFactory::~DatabaseFactory() = default;

// The second number is how many records a logbook holds; the first tells a flash file system its area.
std::unique_ptr<IDatabase> DatabaseFactory::create(const char*, std::uint32_t, std::uint32_t second) const {
    return std::make_unique<RingOfRecords>(second);
}

}  // namespace lgb
