#pragma once

#include <atomic>

// Counts for the whole program, and all libraries it loads, how often it waits for the disk. For programs that link
// Syncs.cpp or calls.cpp.

namespace support {

inline std::atomic<int> syncs = 0;

}  // namespace support
