#include "logLine.h"
#include "printable.h"

#include <tqbase2/system/log/detail.h>

#include <cstdlib>
#include <string>
#include <string_view>

namespace tqbase2::system::log::detail {

namespace {

constexpr unsigned int warning = 3;

unsigned int levelFromEnvironment() {
    const char* const value = std::getenv("TQZEL_LOG_LEVEL");
    if (value == nullptr || *value == '\0') {
        return warning;
    }
    const std::string_view text(value);
    if (text.size() == 1 && text[0] >= '1' && text[0] <= '5') {  // from 5 on nothing is enabled
        return static_cast<unsigned int>(text[0] - '0');
    }
    standalone::logLine(warning,
                        "TQZEL_LOG_LEVEL is \"" + standalone::printableExtract(text) + "\", expected 1 to 5; using 3");
    return warning;
}

}  // namespace

bool isEnabled(unsigned int level, const char*) {
    static const unsigned int lowest = levelFromEnvironment();
    return level >= lowest;
}

void log(unsigned int level, const char* channel, const std::string& message) {
    standalone::logLine(level, std::string(channel) + ": " + standalone::printableExtract(message));
}

}  // namespace tqbase2::system::log::detail
