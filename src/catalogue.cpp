#include "Message.h"
#include "texts.h"

#include <lgb/catalogue.h>
#include <lgb/commontexts.h>

#include <algorithm>
#include <iterator>

namespace lgb::catalogue {

using tqbase2::nsa::zel::enums::LogbookEntryType;

namespace {

std::vector<Place> placesOf(std::string_view words) {
    std::vector<Place> found;
    std::string_view before;
    while (const lgb::Place* const place = nextPlace(words, before)) {
        found.push_back({std::string(place->name), place->key, place->holds});
    }
    return found;
}

void append(LogbookEntryType type, const lgb::Message& row, std::vector<Message>& all) {
    std::string words = row.words;
    if (row.power == Power::Reduced) {
        words += commontexts::Reduced(type);
    }
    all.push_back({type, row.id, words, placesOf(words)});
}

/// A type's own messages win over those it shares.
void append(LogbookEntryType type, const MessageTable& own, std::vector<Message>& all) {
    const MessageTable shared = sharedMessages();
    const auto idIsLess = [](const lgb::Message& left, const lgb::Message& right) { return left.id < right.id; };
    std::vector<lgb::Message> rows;
    std::set_union(own.begin(), own.end(), shared.begin(), shared.end(), std::back_inserter(rows), idIsLess);
    for (const lgb::Message& row : rows) {
        append(type, row, all);
    }
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
