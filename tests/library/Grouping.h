#pragma once

#include <locale>
#include <string>

namespace librarytest {

/// Whoever inserts numbers by themselves gets "4 294 967 295" from a stream with this.
class Grouping : public std::numpunct<char> {
    char do_thousands_sep() const override { return ' '; }

    std::string do_grouping() const override { return "\3"; }
};

}  // namespace librarytest
