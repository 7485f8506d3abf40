#include "Message.h"

#include "ParameterRecord.h"

namespace lgb {

std::string compose(std::string_view words, const ParameterRecord& params) {
    constexpr std::size_t usualLength = 120;
    std::string text;
    text.reserve(usualLength);
    for (std::size_t open = words.find('{'); open != std::string_view::npos; open = words.find('{')) {
        const std::size_t close = words.find('}', open);
        const Place& place = places[indexOfPlace(words.substr(open + 1, close - open - 1))];
        text += words.substr(0, open);
        text += place.shown(params[place.key]);
        words.remove_prefix(close + 1);
    }
    text += words;
    return text;
}

std::string compose(std::string_view words, const std::string& params) {
    return compose(words, ParameterRecord(params));
}

}  // namespace lgb
