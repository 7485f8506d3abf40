#pragma once

#include <string>

#pragma GCC visibility push(default)

/// The platform's levelled logger: 1 trace, 2 information, 3 warning, 4 error. Must be safe from any thread.
namespace tqbase2::system::log::detail {

/// Asked before a message is composed, so that nothing is formatted for a level that is off; but for what a device
/// mirrors with entryLog.
bool isEnabled(unsigned int level, const char* channel);

/// Writes one line. Should not throw: a page would fail for the sake of it.
/// @param level 1 to 4
/// @param channel who speaks, "libTqZelLogbook"
/// @param message may hold any bytes, those of damaged records included
void log(unsigned int level, const char* channel, const std::string& message);

}  // namespace tqbase2::system::log::detail

#pragma GCC visibility pop
