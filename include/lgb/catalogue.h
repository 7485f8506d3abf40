#pragma once

#include <nsa/zel/enums/LogbookEntryType.h>
#include <nsa/zel/export.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The messages of this library as a list, for people: the same rows that entries are worded from.
namespace lgb::catalogue {

/// A place in the words of a message that a member of the parameter record fills in. Its texts are the library's own
/// and last as long as it is loaded.
struct Place {
    std::string_view name;  ///< as it stands in the words, between braces
    std::string_view key;   ///< of the member
    const char* holds;      ///< what the member holds: "number", "boolean", "text" or the words it may be
};

/// One message: what a code stands for.
struct Message {
    tqbase2::nsa::zel::enums::LogbookEntryType type;  ///< with the id the code, "E14"
    std::uint32_t id;                                 ///< unique within the type, never 0
    std::string words;          ///< "Setting attenuation failed for amplifier {module} on bus {bus}"
    std::vector<Place> places;  ///< those in the words, from left to right
};

/// Every message: errors, warnings, information, each by ascending id. Safe from any thread.
TQZEL_EXPORT std::vector<Message> messages();

}  // namespace lgb::catalogue
