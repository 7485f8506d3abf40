#pragma once

/// In the place of the platform's logger, for programs that link countingLogger.cpp: everything is enabled, so that
/// every line is composed, and none is written.
namespace support {

/// Lines logged so far at this level or above, by all threads.
unsigned long loggedLines(unsigned int lowestLevel);

}  // namespace support
