#pragma once

#include <ios>
#include <sstream>
#include <string>
#include <utility>

/// Text helpers, and the words for on and off that the platform supplies.
namespace businesslogic::zel {

/// Joins its arguments through a string stream, with nothing between them; a bool reads "true" or "false". A null
/// `const char*` ends the text, by the stream's own rule.
template <typename... Args>
std::string createStr(Args&&... args) {
    std::stringstream stream;
    stream << std::boolalpha;
    stream.exceptions(std::ios_base::badbit);  // else running out of memory would only cut the text
    try {
        static_cast<void>((stream << ... << std::forward<Args>(args)));
    } catch (const std::ios_base::failure&) {
        return stream.str();  // up to the null
    }
    return stream.str();
}

}  // namespace businesslogic::zel
