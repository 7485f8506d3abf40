#pragma once

#include "entries.h"
#include "pattern.h"

#include <lgb/Code.h>

#include <CLI/CLI.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tool {

/// Which entries are wanted; each condition that is set must hold.
struct Filter {
    std::vector<tqbase2::nsa::zel::enums::LogbookEntryType> types;  ///< one of these
    std::vector<lgb::code::Code> codes;                             ///< one of these
    std::optional<std::int64_t> unit;
    std::optional<std::int64_t> device;
    std::optional<std::int64_t> since;  ///< seconds since 1970-01-01T00:00:00Z
    std::optional<std::int64_t> until;
    Pattern pattern;  ///< somewhere in the description

    /// An entry that can't be read has nothing but a time to match.
    bool matches(const ReadEntry& read) const;

private:
    bool asksForContent() const;
    bool matchesContent(const ReadEntry& read) const;
};

/// Declares an option for each condition.
void declareFilter(CLI::App& command, Filter& filter);

/// Requires that the time that is asked for does not end before it begins.
/// @throws CLI::ValidationError
void requirePeriod(const Filter& filter);

/// The code a short name such as "E14" stands for.
/// @throws CLI::ValidationError naming `argument`
lgb::code::Code codeNamed(const std::string& argument, const std::string& name);

}  // namespace tool
