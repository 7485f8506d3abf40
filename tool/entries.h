#pragma once

#include <nsa/zel/logbook/Entry.h>
#include <standalone/LogbookReader.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace tool {

/// What a logbook makes of a record.
enum class Standing {
    Shown,
    ServiceOnly,  ///< a free text in the customer logbook, which shows none
    Wordless,     ///< its message can't be put in words
    Unreadable,   ///< what is stored is no entry
    Damaged,      ///< what is stored is not what was added
    Lost,         ///< none: numbers that damage took
};

/// How a standing is called in the tool's output.
const char* nameOf(Standing standing);

/// A record with all that is known of it.
struct ReadEntry {
    std::int64_t number = 0;
    tqbase2::nsa::zel::logbook::Entry entry;  ///< all but its time only if it is read
    Standing standing = Standing::Shown;
    std::string reason;             ///< why it is wordless or unreadable
    std::string document;           ///< what is stored
    bool hasMessage = true;         ///< false: "unknown entry"
    std::int64_t firstLost = 0;     ///< of numbers that were lost, up to `number`
    std::int64_t clockSetBack = 0;  ///< seconds by which it is older than the record added before it
};

/// Whether it is known what the entry says, be it shown or not.
bool isRead(const ReadEntry& read);

/// "E14", the short name of a message.
std::string codeOf(tqbase2::nsa::zel::enums::LogbookEntryType type, std::uint32_t id);

std::string codeOf(const tqbase2::nsa::zel::logbook::Entry& entry);

/// The wording of each message by its short name.
std::map<std::string, std::string> wordings();

/// A message as it is counted: by its words, too, as those of the older generation are no messages of ours.
struct ShownMessage {
    tqbase2::nsa::zel::enums::LogbookEntryType type;
    std::string code;  ///< empty for free texts
    std::string words;

    bool operator<(const ShownMessage& other) const;
};

/// @param entry that could be read
/// @param words as wordings() returns them
ShownMessage messageOf(const tqbase2::nsa::zel::logbook::Entry& entry, const std::map<std::string, std::string>& words);

/// Reads a record as its logbook does.
/// @param service whether it is of the service logbook
ReadEntry readEntry(const standalone::StoredRecord& record, bool service);

/// In which order and from where on entries are read.
struct Order {
    bool oldestFirst = false;
    std::int64_t after = 0;  ///< only entries with numbers above
    bool withLost = false;   ///< also where numbers were lost
};

/// Calls for each entry, until it returns false. Holds only a few at a time.
void forEachEntry(standalone::LogbookReader& reader, const Order& order, bool service,
                  const std::function<bool(ReadEntry&&)>& consume);

}  // namespace tool
