#include "report.h"

#include <tqbase2/system/log/detail.h>

namespace standalone {

void report(Level level, const std::string& line) {
    const auto number = static_cast<unsigned int>(level);
    constexpr const char* channel = "libTqZelPlatform";
    if (tqbase2::system::log::detail::isEnabled(number, channel)) {
        tqbase2::system::log::detail::log(number, channel, line);
    }
}

}  // namespace standalone
