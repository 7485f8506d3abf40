#pragma once

#include <nsa/zel/enums/LogbookEntryType.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>
#include <vector>

namespace tool {

// Index is the type.
inline const std::vector<std::string> typeNames{"info", "warning", "error"};

inline tqbase2::nsa::zel::enums::LogbookEntryType typeNamed(const std::string& name) {
    const auto found = std::find(typeNames.begin(), typeNames.end(), name);
    return static_cast<tqbase2::nsa::zel::enums::LogbookEntryType>(found - typeNames.begin());
}

// What is allowed stands in the type name of each option, so the validators' own descriptions would only repeat it.

/// One of the words, spelled exactly.
template <typename Words>
CLI::Validator oneOf(const Words& words) {
    return CLI::IsMember(std::vector<std::string>(words.begin(), words.end())).description("");
}

/// A decimal number, both ends included. Leading zeros and 0x are refused: they would be read as another base.
template <typename Number>
CLI::Validator between(Number least, Number most) {
    const auto complaint = [least, most](const std::string& text) -> std::string {
        Number number{};
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        const bool isDecimal =
            error == std::errc() && end == text.data() + text.size() && (text[0] != '0' || text.size() == 1);
        if (isDecimal && number >= least && number <= most) {
            return "";
        }
        return "Value " + text + " not in range " + std::to_string(least) + " to " + std::to_string(most);
    };
    return {complaint, ""};
}

}  // namespace tool
