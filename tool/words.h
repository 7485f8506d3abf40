#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

/// The candidate that somebody who mistyped a word may have meant, in upper or lower case; empty when none is near.
std::string nearest(const std::string& word, const std::vector<std::string>& candidates);

/// `; did you mean "show"?`, or nothing when no candidate is near.
std::string suggestion(const std::string& word, const std::vector<std::string>& candidates);

/// "info, warning, error"
std::string listed(const std::vector<std::string>& words);

/// "a", "a or b", "a, b or c"
std::string listed(const std::vector<std::string>& words, const std::string& conjunction);

/// "1 entry", "2 entries"
std::string entries(std::int64_t count);

/// "entry 7", "entries 7 to 9"
std::string entriesFrom(std::int64_t first, std::int64_t last);

}  // namespace tool
