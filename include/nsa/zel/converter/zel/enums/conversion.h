#pragma once

#include <nsa/zel/enums/spelling.h>
#include <nsa/zel/logging.h>
#include <tqbase2/system/Exception.h>

#include <json/value.h>
#include <boost/throw_exception.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

/// What the enum converters have in common. Each hands in its own spellings and the place that a failure names: the
/// converter's header by a literal, since it is compiled in units where no path is stripped.
namespace tqbase2::nsa::zel::enums::conversion {

/// The JSON string of a spelling.
/// @param text a spelling; empty for a number outside the enumeration
/// @param location the place that a failure names
/// @throws system::LogicError for an empty text
inline Json::Value toJson(std::string_view text, const boost::source_location& location) {
    if (text.empty()) {
        boost::throw_exception(system::LogicError(), location);
    }
    return Json::Value(text.data(), text.data() + text.size());
}

/// The index of a spelling, 0 for null and the empty text. Compiled once for all enumerations.
/// @throws system::LogicError, logged at level 4, for another text; Json::LogicError for an array or object
inline std::size_t indexFromJson(const std::string_view* spellings, std::size_t count, const Json::Value& value,
                                 const boost::source_location& location) {
    const std::string text = value.asString();
    const auto* const end = spellings + count;
    const auto* const found = std::find(spellings, end, text);
    if (found != end) {
        return static_cast<std::size_t>(found - spellings);
    }
    if (text.empty()) {
        return 0;
    }
    if (system::log::detail::isEnabled(logging::error, logging::channel)) {
        system::log::detail::log(logging::error, logging::channel, "No valid conversion to enum for value " + text);
    }
    boost::throw_exception(system::LogicError(), location);
}

/// The value of a spelling, under the rules of indexFromJson.
template <typename Enum, std::size_t Count>
Enum fromJson(const std::array<std::string_view, Count>& spellings, const Json::Value& value,
              const boost::source_location& location) {
    return static_cast<Enum>(indexFromJson(spellings.data(), Count, value, location));
}

}  // namespace tqbase2::nsa::zel::enums::conversion
