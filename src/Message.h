#pragma once

#include "places.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace lgb {

class ParameterRecord;

/// Whether the amplifier goes on with less, which is said of warnings alone.
enum class Power : std::uint8_t { Full, Reduced };

/// One message: its words as they are shown, with the names of places where the parameter record fills them in:
/// "Connecting amplifier {module} on bus {bus} failed".
struct Message {
    constexpr Message(std::uint16_t number, const char* text, Power left = Power::Full)
        : id(number), power(left), words(text) {}

    std::uint16_t id;
    Power power;
    const char* words;
};

/// The messages of one type, or those that two types share; ids ascending.
class MessageTable {
public:
    template <std::size_t Count>
    constexpr explicit MessageTable(const Message (&rows)[Count]) : first(rows), last(rows + Count) {}

    const Message* begin() const { return first; }

    const Message* end() const { return last; }

    /// The message of an id, or null.
    const Message* find(unsigned int id) const;

private:
    const Message* first;
    const Message* last;
};

/// What everybody answers for an id without a message.
inline constexpr const char* unknownEntry = "unknown entry";

/// The next place in some words, or null behind the last one.
/// @param words with places that there are; begin behind the place afterwards
/// @param before is set to the words before the place; without a place, to all that is left
const Place* nextPlace(std::string_view& words, std::string_view& before);

/// Puts words with places into a text.
/// @param words with places that there are
/// @throws what a place throws that can't be filled in; the first from the left
std::string compose(std::string_view words, const ParameterRecord& params);

/// The same over the text of a parameter record.
std::string compose(std::string_view words, const std::string& params);

/// Whether a message table can be searched: one row an id, ids ascending.
template <std::size_t Count>
constexpr bool idsAscend(const Message (&rows)[Count]) {
    for (std::size_t i = 1; i < Count; ++i) {
        if (rows[i - 1].id >= rows[i].id) {
            return false;
        }
    }
    return true;
}

/// Whether each brace of some words opens or closes the name of a place.
constexpr bool placesAreKnown(std::string_view words) {
    for (std::size_t open = words.find_first_of("{}"); open != std::string_view::npos;
         open = words.find_first_of("{}")) {
        const std::size_t close = words.find('}');
        if (close == open || close == std::string_view::npos ||
            indexOfPlace(words.substr(open + 1, close - open - 1)) == std::size(places)) {
            return false;
        }
        words.remove_prefix(close + 1);
    }
    return true;
}

/// Whether all places of a message table are known.
template <std::size_t Count>
constexpr bool placesAreKnown(const Message (&rows)[Count]) {
    bool known = true;
    for (const Message& row : rows) {
        known = known && placesAreKnown(std::string_view(row.words));
    }
    return known;
}

}  // namespace lgb
