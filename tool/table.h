#pragma once

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

/// Tables whose rows have a name that is chosen on the command line.
namespace tool {

template <typename Rows>
std::vector<std::string> namesIn(const Rows& rows) {
    std::vector<std::string> names;
    std::transform(std::begin(rows), std::end(rows), std::back_inserter(names),
                   [](const auto& row) { return row.name; });
    return names;
}

/// @param name one of namesIn
template <typename Rows>
const auto& rowNamed(const Rows& rows, const std::string& name) {
    return *std::find_if(std::begin(rows), std::end(rows), [&](const auto& row) { return row.name == name; });
}

}  // namespace tool
