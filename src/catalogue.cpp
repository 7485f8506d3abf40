#include "Message.h"
#include "texts.h"

#include <lgb/catalogue.h>
#include <lgb/commontexts.h>

#include <limits>

namespace lgb::catalogue {

using tqbase2::nsa::zel::enums::LogbookEntryType;

namespace {

void append(LogbookEntryType type, const lgb::Message& row, std::vector<Message>& all) {
    Message& message = all.emplace_back();
    message.type = type;
    message.id = row.id;
    message.words = row.words;
    if (row.power == Power::Reduced) {
        message.words += commontexts::Reduced(type);
    }
    std::string_view words = row.words;
    std::string_view before;
    while (const lgb::Place* const place = nextPlace(words, before)) {
        message.places.push_back({place->name, place->key, place->holds});
    }
}

/// A type's own messages win over those it shares.
void append(LogbookEntryType type, const MessageTable& own, std::vector<Message>& all) {
    const MessageTable shared = sharedMessages();
    const lgb::Message* nextShared = shared.begin();
    const auto appendSharedBelow = [&](unsigned int id) {
        for (; nextShared != shared.end() && nextShared->id <= id; ++nextShared) {
            if (nextShared->id < id) {
                append(type, *nextShared, all);
            }
        }
    };
    for (const lgb::Message& row : own) {
        appendSharedBelow(row.id);
        append(type, row, all);
    }
    appendSharedBelow(std::numeric_limits<unsigned int>::max());
}

}  // namespace

std::vector<Message> messages() {
    std::vector<Message> all;
    append(LogbookEntryType::Error, errorMessages(), all);
    append(LogbookEntryType::Warning, warningMessages(), all);
    for (const lgb::Message& row : infoMessages()) {
        append(LogbookEntryType::Info, row, all);
    }
    return all;
}

}  // namespace lgb::catalogue
