#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace tool {

// What is allowed stands in the type name of each option, so the validators' own descriptions would only repeat it.

/// One of the words, spelled exactly.
template <typename Words>
CLI::Validator oneOf(const Words& words) {
    return CLI::IsMember(std::vector<std::string>(words.begin(), words.end())).description("");
}

/// A number of that width, both ends included.
template <typename Number>
CLI::Validator between(Number least, Number most) {
    return CLI::Range(least, most).description("");
}

}  // namespace tool
