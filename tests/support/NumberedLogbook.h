#pragma once

#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>
#include <lgb/LogbookFactory.h>
#include <lgb/params.h>
#include <standalone/SqliteDatabaseFactory.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace support {

using Entry = tqbase2::nsa::zel::logbook::Entry;

/// The record of that number, as it is added and as it must come back. Some are longer than a page of the file.
inline Entry recordOf(std::int64_t number) {
    const auto length = static_cast<std::size_t>(number % 8 == 3 ? 1000 * (2 + number / 8 % 8) : 50);
    const std::string text = std::to_string(number) + std::string(length, static_cast<char>('a' + number % 26));
    const lgb::code::Code code(14, tqbase2::nsa::zel::enums::LogbookEntryType::Error);
    Entry entry = lgb::LogbookEntryCreator::create(lgb::Entry(code, lgb::params::createService(text)));
    entry.timestamp = {number, number, text};
    return entry;
}

inline std::int64_t numberOf(const Entry& entry) {
    return entry.timestamp.seconds;
}

inline bool isWhole(const Entry& entry) {
    const Entry added = recordOf(numberOf(entry));
    return entry.type == added.type && entry.code == added.code && entry.details.params == added.details.params &&
           entry.timestamp.nanoseconds == added.timestamp.nanoseconds && entry.timestamp.text == added.timestamp.text;
}

constexpr const char* numberedName = "lgbNumbered";

/// Where a logbook is kept.
struct Place {
    std::filesystem::path folder;
    std::uint32_t capacity;  // 0: unlimited
    const char* name = numberedName;
};

/// A logbook in use.
struct NumberedLogbook {
    explicit NumberedLogbook(const Place& place)
        : database(standalone::SqliteDatabaseFactory(place.folder).create(place.name, 0, place.capacity)),
          logbook(lgb::LogbookFactory().create(*database, true)) {}

    std::unique_ptr<lgb::IDatabase> database;
    std::unique_ptr<lgb::ILogbook> logbook;
};

}  // namespace support
