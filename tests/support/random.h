#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace support {

using Random = std::mt19937;

inline std::int64_t upTo(Random& random, std::int64_t most) {
    return std::uniform_int_distribution<std::int64_t>(0, most)(random);
}

/// One time in so many.
inline bool oneIn(Random& random, std::int64_t times) {
    return upTo(random, times - 1) == 0;
}

/// Any of what is there.
template <typename Choice>
const typename Choice::value_type& oneOf(const Choice& choice, Random& random) {
    return choice[static_cast<std::size_t>(upTo(random, static_cast<std::int64_t>(choice.size()) - 1))];
}

}  // namespace support
