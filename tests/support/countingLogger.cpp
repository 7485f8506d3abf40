#include "countingLogger.h"

#include <tqbase2/system/log/detail.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <numeric>
#include <string>

namespace {

// Index is the level.
std::array<std::atomic<unsigned long>, 5> lines{};

}  // namespace

unsigned long support::loggedLines(unsigned int lowestLevel) {
    return std::accumulate(lines.begin() + static_cast<std::ptrdiff_t>(lowestLevel), lines.end(), 0UL);
}

bool tqbase2::system::log::detail::isEnabled(unsigned int, const char*) {
    return true;
}

void tqbase2::system::log::detail::log(unsigned int level, const char*, const std::string&) {
    ++lines[std::min<std::size_t>(level, lines.size() - 1)];
}
