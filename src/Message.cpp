#include "Message.h"

#include "ParameterRecord.h"

#include <algorithm>

namespace lgb {

const Message* MessageTable::find(unsigned int id) const {
    const auto isBelow = [](const Message& message, unsigned int wanted) { return message.id < wanted; };
    const Message* const message = std::lower_bound(first, last, id, isBelow);
    return message != last && message->id == id ? message : nullptr;
}

const Place* nextPlace(std::string_view& words, std::string_view& before) {
    const std::size_t open = words.find('{');
    before = words.substr(0, open);
    if (open == std::string_view::npos) {
        return nullptr;
    }
    const std::size_t close = words.find('}', open);
    const Place& place = places[indexOfPlace(words.substr(open + 1, close - open - 1))];
    words.remove_prefix(close + 1);
    return &place;
}

std::string compose(std::string_view words, const ParameterRecord& params) {
    std::string text;
    text.reserve(words.size());  // what stands in a place is seldom longer than its name
    std::string_view before;
    while (const Place* const place = nextPlace(words, before)) {
        text += before;
        text += place->shown(params[place->key]);
    }
    text += before;
    return text;
}

std::string compose(std::string_view words, const std::string& params) {
    return compose(words, ParameterRecord(params));
}

}  // namespace lgb
