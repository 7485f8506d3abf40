#pragma once

#include <atomic>
#include <cstdint>

// What a test does in place of the system calls of this program, SQLite's too, and of the processes that it forks. For
// programs that link calls.cpp.

namespace support {

/// A system call that concerns files.
enum class FileCall {
    Open,
    OpenToWrite,
    Close,
    Read,
    Write,
    Truncate,
    Allot,  ///< space
    Sync,
    Unlink,
    Rename,
    MakeFolder,
    Lock,
    Control,  ///< of locks let go of, and all else that fcntl does
    RandomBytes,
    Status,
};

/// What becomes of a call; by itself, it is made.
struct Fate {
    int error = 0;        ///< it fails with this one
    int signal = 0;       ///< the process gets it before the call
    bool isHalf = false;  ///< half of the bytes are written before either
};

/// Tells what becomes of each call; none: it is made.
using Fates = Fate (*)(FileCall call);

/// From now on.
void setFates(Fates fates);

/// How often this program has waited for the disk.
inline std::atomic<int> syncs = 0;

}  // namespace support
