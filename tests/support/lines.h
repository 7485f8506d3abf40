#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace support {

/// How often a part stands in a text.
inline std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

/// Whether `some` is `all` but for lines that are left out.
inline bool isSelection(const std::vector<std::string>& some, const std::vector<std::string>& all) {
    auto next = all.begin();
    return std::all_of(some.begin(), some.end(), [&](const std::string& line) {
        next = std::find(next, all.end(), line);
        return next != all.end() && next++ != all.end();
    });
}

}  // namespace support
