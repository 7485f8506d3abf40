#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace tool {

/// How often each of something was seen.
template <typename Key>
using Counts = std::map<Key, std::int64_t>;

/// Most frequent first.
template <typename Key>
std::vector<std::pair<Key, std::int64_t>> ranked(const Counts<Key>& counts) {
    std::vector<std::pair<Key, std::int64_t>> rows(counts.begin(), counts.end());
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto& left, const auto& right) { return left.second > right.second; });
    return rows;
}

}  // namespace tool
