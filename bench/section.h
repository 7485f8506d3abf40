#pragma once

// Tells the instruction counter that runs this program where to count. Nothing happens without one.

#ifdef __arm__

#include <sys/personality.h>

namespace bench::section {

/// A question to the kernel that nobody else asks, by which scripts/bench's counter in the emulator knows the place.
inline void mark() {
    personality(0xffffffff);
}

inline void warmedUp() {}

inline void begin() {
    mark();
}

inline void end() {
    mark();
}

}  // namespace bench::section

#else

#include <valgrind/callgrind.h>

namespace bench::section {

inline void warmedUp() {
    CALLGRIND_START_INSTRUMENTATION;
}

inline void begin() {
    CALLGRIND_TOGGLE_COLLECT;
}

inline void end() {
    CALLGRIND_TOGGLE_COLLECT;
}

}  // namespace bench::section

#endif
