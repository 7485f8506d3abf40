#pragma once

#include <ios>
#include <sstream>
#include <string>
#include <utility>

namespace businesslogic::zel {

/// Joins its arguments through a string stream, with nothing between them; a bool reads "true" or "false". A null
/// `const char*` ends the text, by the stream's own rule.
template <typename... Args>
std::string createStr(Args&&... args) {
    std::stringstream stream;
    stream << std::boolalpha;
    static_cast<void>((stream << ... << std::forward<Args>(args)));
    return stream.str();
}

}  // namespace businesslogic::zel
