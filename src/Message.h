#pragma once

#include "places.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace lgb {

class ParameterRecord;

/// One message: its words as they are shown, with the names of places where the parameter record fills them in:
/// "Connecting amplifier {module} on bus {bus} failed".
struct Message {
    unsigned int id;
    const char* words;
};

/// What everybody answers for an id without a message.
inline constexpr const char* unknownEntry = "unknown entry";

/// Puts words with places into a text.
/// @param words with places that there are
/// @throws what a place throws that can't be filled in; the first from the left
std::string compose(std::string_view words, const ParameterRecord& params);

/// The same over the text of a parameter record.
std::string compose(std::string_view words, const std::string& params);

/// Whether a message table can be searched: one row an id, ids ascending.
template <typename Row, std::size_t Count>
constexpr bool idsAscend(const Row (&rows)[Count]) {
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
template <typename Row, std::size_t Count>
constexpr bool placesAreKnown(const Row (&rows)[Count]) {
    bool known = true;
    for (const Row& row : rows) {
        known = known && placesAreKnown(std::string_view(row.words));
    }
    return known;
}

/// The row of an id, or null.
template <typename Row, std::size_t Count>
const Row* find(const Row (&rows)[Count], unsigned int id) {
    const Row* const end = rows + Count;
    const Row* const row =
        std::lower_bound(rows, end, id, [](const Row& each, unsigned int wanted) { return each.id < wanted; });
    return row != end && row->id == id ? row : nullptr;
}

}  // namespace lgb
