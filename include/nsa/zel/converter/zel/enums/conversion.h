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

template <typename Enum, std::size_t Count>
Json::Value toJson(const std::array<std::string_view, Count>& spellings, Enum value,
                   const boost::source_location& location) {
    const std::string_view text = spelling(spellings, value);
    if (text.empty()) {
        boost::throw_exception(system::LogicError(), location);
    }
    return Json::Value(std::string(text));
}

template <typename Enum, std::size_t Count>
Enum fromJson(const std::array<std::string_view, Count>& spellings, const Json::Value& value,
              const boost::source_location& location) {
    const std::string text = value.asString();
    const auto found = std::find(spellings.begin(), spellings.end(), text);
    if (found != spellings.end()) {
        return static_cast<Enum>(found - spellings.begin());
    }
    if (text.empty()) {
        return static_cast<Enum>(0);
    }
    if (system::log::detail::isEnabled(logging::error, logging::channel)) {
        system::log::detail::log(logging::error, logging::channel, "No valid conversion to enum for value " + text);
    }
    boost::throw_exception(system::LogicError(), location);
}

}  // namespace tqbase2::nsa::zel::enums::conversion
