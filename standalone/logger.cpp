#include "printable.h"

#include <tqbase2/system/log/detail.h>

#include <spdlog/logger.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace tqbase2::system::log::detail {

namespace {

constexpr unsigned int lowestLevel = 1;
constexpr unsigned int highestLevel = 4;
constexpr unsigned int silence = highestLevel + 1;
constexpr unsigned int defaultLevel = 3;

// Index is the library's level.
constexpr spdlog::level::level_enum spdlogLevels[] = {spdlog::level::trace, spdlog::level::trace, spdlog::level::info,
                                                      spdlog::level::warn, spdlog::level::err};

/// Never destroyed: others may log while the process ends.
spdlog::logger& logger() {
    static spdlog::logger* const logger = [] {
        auto* const made = new spdlog::logger("stderr", std::make_shared<spdlog::sinks::stderr_sink_mt>());
        made->set_pattern("%Y-%m-%d %H:%M:%S.%e %l %v");
        made->set_level(spdlog::level::trace);
        return made;
    }();
    return *logger;
}

unsigned int levelFromEnvironment() {
    const char* const value = std::getenv("TQZEL_LOG_LEVEL");
    if (value == nullptr || *value == '\0') {
        return defaultLevel;
    }
    const std::string_view text(value);
    if (text.size() == 1 && text[0] >= '1' && text[0] <= '5') {
        return static_cast<unsigned int>(text[0] - '0');
    }
    logger().warn("TQZEL_LOG_LEVEL is \"{}\", expected {} to {}; using {}", standalone::printable(text), lowestLevel,
                  silence, defaultLevel);
    return defaultLevel;
}

}  // namespace

bool isEnabled(unsigned int level, const char*) {
    static const unsigned int lowest = levelFromEnvironment();
    return level >= lowest;
}

void log(unsigned int level, const char* channel, const std::string& message) {
    logger().log(spdlogLevels[level < highestLevel ? level : highestLevel], "{}: {}", channel,
                 standalone::printable(message));
}

}  // namespace tqbase2::system::log::detail
