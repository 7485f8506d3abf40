#pragma once

#include <string>

#pragma GCC visibility push(default)

/// The platform's levelled logger: 1 trace, 2 information, 3 warning, 4 error. Must be safe from any thread.
namespace tqbase2::system::log::detail {

/// Asked before a message is composed, so that nothing is formatted for a level that is off; but for what a device
/// mirrors with entryLog.
bool isEnabled(unsigned int level, const char* channel);

void log(unsigned int level, const char* channel, const std::string& message);

}  // namespace tqbase2::system::log::detail

#pragma GCC visibility pop
