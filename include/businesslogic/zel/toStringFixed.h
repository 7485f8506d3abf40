#pragma once

#include <ios>
#include <sstream>
#include <string>

namespace businesslogic::zel {

/// The text of one value in fixed notation.
/// @tparam Precision digits behind the point of a floating-point value
/// @tparam BoolAlpha whether a bool reads "true" and "false" instead of 1 and 0
template <typename Value, int Precision, bool BoolAlpha>
std::string toStringFixed(const Value& value) {
    std::ostringstream stream;
    stream.exceptions(std::ios_base::badbit);  // else running out of memory would only cut the text
    stream.precision(Precision);
    stream.setf(std::ios_base::fixed, std::ios_base::floatfield);
    if constexpr (BoolAlpha) {
        stream << std::boolalpha;
    }
    stream << value;
    return stream.str();
}

}  // namespace businesslogic::zel
