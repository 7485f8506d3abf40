#pragma once

#include <cstdlib>
#include <iostream>

namespace fuzz {

/// Ends the program as a crash unless the promise holds, so that libFuzzer keeps the input.
inline void require(bool holds, const char* promise) {
    if (!holds) {
        std::cerr << "broken: " << promise << std::endl;
        std::abort();
    }
}

}  // namespace fuzz
