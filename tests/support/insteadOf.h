#pragma once

#include <dlfcn.h>

// For functions of a test's own in front of the C library's, for all libraries it loads, too.

/// Behind a declaration: under that very name. In headers some names stand for others, as files may be large.
#define TQZEL_INSTEAD_OF(name) __asm__(#name)

namespace support {

/// Calls the function of the C library that stands behind one of ours.
template <typename Result, typename... Arguments>
Result callBehind(const char* function, Arguments... arguments) {
    return reinterpret_cast<Result (*)(Arguments...)>(dlsym(RTLD_NEXT, function))(arguments...);
}

}  // namespace support
