#include "logLine.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>

namespace standalone {

namespace {

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

}  // namespace

void logLine(unsigned int level, std::string_view line) {
    logger().log(spdlogLevels[std::min<std::size_t>(level, std::size(spdlogLevels) - 1)],
                 spdlog::string_view_t(line.data(), line.size()));
}

}  // namespace standalone
