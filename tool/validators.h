#pragma once

#include <nsa/zel/enums/LogbookEntryType.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// What options and arguments may be. Their type name says it, which help, manual and completion are made from.
namespace tool {

// Index is the type.
inline const std::vector<std::string> typeNames{"info", "warning", "error"};

inline tqbase2::nsa::zel::enums::LogbookEntryType typeNamed(const std::string& name) {
    const auto found = std::find(typeNames.begin(), typeNames.end(), name);
    return static_cast<tqbase2::nsa::zel::enums::LogbookEntryType>(found - typeNames.begin());
}

/// How a type is called on the command line and in what programs read.
inline const std::string& nameOf(tqbase2::nsa::zel::enums::LogbookEntryType type) {
    return typeNames[static_cast<std::size_t>(type)];
}

/// One of the words, spelled exactly. The type name is the words, with bars between.
CLI::Option* takeOneOf(CLI::Option* option, const std::vector<std::string>& words);

/// The words of an option made by takeOneOf; empty for any other.
std::vector<std::string> wordsOf(const CLI::Option& option);

/// A decimal number, both ends included.
CLI::Option* takeNumber(CLI::Option* option, std::int64_t least, std::int64_t most);

/// The same from 0 on for a number of the option's own type.
template <typename Number>
CLI::Option* takeNumber(CLI::Option* option, Number most) {
    return takeNumber(option, 0, std::int64_t{most});
}

}  // namespace tool
