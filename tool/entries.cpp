#include "entries.h"

#include "moments.h"
#include "terminal.h"
#include "words.h"

#include <lgb/DescriptionCreator.h>
#include <lgb/Entry.h>
#include <lgb/ServiceDescriptionCreator.h>
#include <lgb/catalogue.h>
#include <nsa/zel/converter/zel/structs/LogbookEntryConverter.h>
#include <tqbase2/system/JsonUtility.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <limits>
#include <tuple>
#include <vector>

namespace tool {

namespace enums = tqbase2::nsa::zel::enums;
using standalone::StoredRecord;
using tqbase2::nsa::zel::logbook::Entry;
using tqbase2::nsa::zel::structs::LogbookEntry;
using tqbase2::nsa::zel::structs::LogbookEntryConverter;

namespace {

// Index is the standing.
constexpr const char* standingNames[] = {"shown", "service only", "wordless", "unreadable", "damaged", "lost"};

constexpr unsigned int recordsAtOnce = 16;  // any of which may be of 1 MiB

std::string wordsOf(const Entry& entry) {
    return lgb::DescriptionCreator().createText({static_cast<std::uint32_t>(entry.code), entry.type},
                                                entry.details.params);
}

/// What reads the words that stand for a value throws without one of its own.
std::string reasonOf(const std::exception& exception) {
    const std::string reason = exception.what();
    return reason == std::exception().what() ? "it holds a word that is not known" : reason;
}

/// Why an entry can't be put in words.
std::string reasonOf(const Entry& entry) {
    if (entry.details.generation == enums::Generation::Kestrel) {
        return R"(its parameters hold no readable "typeProduct" and "text")";
    }
    try {
        wordsOf(entry);
        return "its parameters can't be read";
    } catch (const std::exception& exception) {
        return "a parameter can't be read: " + reasonOf(exception);
    }
}

/// Puts an entry in words as its logbook does.
bool describe(Entry& entry, bool service) {
    return service ? lgb::ServiceDescriptionCreator().create(entry) : lgb::DescriptionCreator().create(entry);
}

void putInWords(ReadEntry& read, bool service) {
    if (!service && lgb::isServiceOnly(read.entry)) {
        read.standing = Standing::ServiceOnly;
        return;
    }
    try {
        read.standing = describe(read.entry, service) ? Standing::Shown : Standing::Wordless;
    } catch (const std::exception&) {
        read.standing = Standing::Wordless;
    }
    if (read.standing == Standing::Wordless) {
        read.reason = reasonOf(read.entry);
    } else if (read.entry.details.generation != enums::Generation::Kestrel && !lgb::isServiceOnly(read.entry)) {
        read.hasMessage = wordsOf(read.entry) != "unknown entry";
    }
}

}  // namespace

const char* nameOf(Standing standing) {
    return standingNames[static_cast<std::size_t>(standing)];
}

bool isRead(const ReadEntry& read) {
    return read.standing < Standing::Unreadable;
}

std::string codeOf(enums::LogbookEntryType type, std::uint32_t id) {
    return std::string(enums::logbookEntryTypeSpellings[static_cast<std::size_t>(type)]) + std::to_string(id);
}

std::string codeOf(const Entry& entry) {
    return codeOf(entry.type, static_cast<std::uint32_t>(entry.code));
}

std::map<std::string, std::string> wordings() {
    std::map<std::string, std::string> words;
    for (const lgb::catalogue::Message& message : lgb::catalogue::messages()) {
        words[codeOf(message.type, message.id)] = message.words;
    }
    return words;
}

bool ShownMessage::operator<(const ShownMessage& other) const {
    return std::tie(code, words) < std::tie(other.code, other.words);
}

ShownMessage messageOf(const Entry& entry, const std::map<std::string, std::string>& words) {
    if (lgb::isServiceOnly(entry)) {
        return {entry.type, "", "free text"};
    }
    if (entry.details.generation == enums::Generation::Kestrel) {
        return {entry.type, codeOf(entry), printable(entry.description)};
    }
    const auto found = words.find(codeOf(entry));
    return {entry.type, codeOf(entry), found == words.end() ? "unknown entry" : found->second};
}

ReadEntry readEntry(const StoredRecord& record, bool service) {
    ReadEntry read;
    read.number = record.number;
    read.document = record.content.json;
    read.entry.timestamp = record.content.timestamp;
    read.clockSetBack =
        secondsBetween(record.content.timestamp.seconds,
                       std::max(record.secondsBefore.value_or(INT64_MIN), record.content.timestamp.seconds));
    if (!record.intact) {
        read.standing = Standing::Damaged;
        return read;
    }
    try {
        static_cast<LogbookEntry&>(read.entry) =
            LogbookEntryConverter::fromJsonToVal(tqbase2::system::JsonUtility::toJsonValue(read.document));
    } catch (const std::exception& exception) {
        read.standing = Standing::Unreadable;
        read.reason = reasonOf(exception);
        return read;
    }
    putInWords(read, service);
    return read;
}

namespace {

ReadEntry readLost(const standalone::LostRange& range) {
    ReadEntry read;
    read.number = range.last;
    read.firstLost = range.first;
    read.standing = Standing::Lost;
    read.entry.timestamp = {range.found, 0, utc(range.found)};
    read.reason = entriesFrom(range.first, range.last);
    return read;
}

/// The lost numbers that are still to be told, in the order in which entries are.
class LostNumbers {
public:
    LostNumbers(standalone::LogbookReader& reader, const Order& order) : oldestFirst(order.oldestFirst) {
        if (!order.withLost) {
            return;
        }
        for (const standalone::LostRange& range : reader.description().lost) {
            if (range.last > order.after) {
                left.push_back(range);
            }
        }
        if (!oldestFirst) {
            std::reverse(left.begin(), left.end());
        }
    }

    /// Tells of those that come before an entry.
    bool tellBefore(std::int64_t number, const std::function<bool(ReadEntry&&)>& consume) {
        while (!left.empty() && (left.front().first < number) == oldestFirst) {
            if (!consume(readLost(left.front()))) {
                return false;
            }
            left.pop_front();
        }
        return true;
    }

private:
    bool oldestFirst;
    std::deque<standalone::LostRange> left;
};

}  // namespace

void forEachEntry(standalone::LogbookReader& reader, const Order& order, bool service,
                  const std::function<bool(ReadEntry&&)>& consume) {
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    LostNumbers lost(reader, order);
    std::int64_t last = order.oldestFirst ? order.after : highest;
    while (true) {
        const std::vector<StoredRecord> records =
            order.oldestFirst ? reader.after(last, recordsAtOnce) : reader.before(last, recordsAtOnce);
        for (const StoredRecord& record : records) {
            if (!lost.tellBefore(record.number, consume) || record.number <= order.after ||
                !consume(readEntry(record, service))) {
                return;
            }
        }
        if (records.empty()) {
            lost.tellBefore(order.oldestFirst ? highest : 0, consume);
            return;
        }
        last = records.back().number;
    }
}

}  // namespace tool
