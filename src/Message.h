#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace lgb {

class ParameterRecord;

/// A part of a message that the parameter record fills in.
using Fragment = std::string (*)(const ParameterRecord& params);

/// One message: its words, then a fragment, then more words.
struct Message {
    unsigned int id;
    std::string_view words;
    Fragment fragment = nullptr;
    std::string_view ending = {};
};

/// What everybody answers for an id without a message.
inline constexpr const char* unknownEntry = "unknown entry";

/// Puts one row into words.
std::string compose(const Message& message, const ParameterRecord& params);

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

/// The row of an id, or null.
template <typename Row, std::size_t Count>
const Row* find(const Row (&rows)[Count], unsigned int id) {
    const Row* const end = rows + Count;
    const Row* const row =
        std::lower_bound(rows, end, id, [](const Row& each, unsigned int wanted) { return each.id < wanted; });
    return row != end && row->id == id ? row : nullptr;
}

}  // namespace lgb
