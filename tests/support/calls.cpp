#include "calls.h"

#include "insteadOf.h"

#include <fcntl.h>
#include <sys/types.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>

namespace support {

namespace {

Fates fatesOfCalls = nullptr;

Fate fateOf(FileCall call) {
    return fatesOfCalls != nullptr ? fatesOfCalls(call) : Fate();
}

/// @return whether the call is to be made
bool survives(const Fate& fate) {
    if (fate.signal != 0) {
        raise(fate.signal);
    }
    if (fate.error != 0) {
        errno = fate.error;
    }
    return fate.error == 0;
}

template <typename Result, typename... Arguments>
Result made(FileCall call, const char* function, Arguments... arguments) {
    return survives(fateOf(call)) ? callBehind<Result>(function, arguments...) : Result(-1);
}

template <typename... Offset>
ssize_t written(const char* function, int file, const void* bytes, std::size_t count, Offset... offset) {
    const Fate fate = fateOf(FileCall::Write);
    if (fate.isHalf) {
        callBehind<ssize_t>(function, file, bytes, count / 2, offset...);
    }
    return survives(fate) ? callBehind<ssize_t>(function, file, bytes, count, offset...) : -1;
}

FileCall opening(int flags) {
    return (flags & O_ACCMODE) == O_RDONLY ? FileCall::Open : FileCall::OpenToWrite;
}

// Whoever can't have large files has both.
constexpr std::array<int, 2> setLock = {F_SETLK, F_SETLK64};

FileCall controlling(int command, void* argument) {
    const bool isLock = std::count(setLock.begin(), setLock.end(), command) > 0 &&
                        static_cast<struct flock*>(argument)->l_type != F_UNLCK;
    return isLock ? FileCall::Lock : FileCall::Control;
}

}  // namespace

void setFates(Fates fates) {
    fatesOfCalls = fates;
}

}  // namespace support

// In front of the C library's, for SQLite too.
#pragma GCC visibility push(default)

extern "C" {

using support::FileCall;

int openFile(const char* file, int flags, mode_t mode) TQZEL_INSTEAD_OF(open);
int openFile64(const char* file, int flags, mode_t mode) TQZEL_INSTEAD_OF(open64);
int openBelow(int folder, const char* file, int flags, mode_t mode) TQZEL_INSTEAD_OF(openat);
int openBelow64(int folder, const char* file, int flags, mode_t mode) TQZEL_INSTEAD_OF(openat64);
int closeFile(int file) TQZEL_INSTEAD_OF(close);
ssize_t readNext(int file, void* bytes, std::size_t count) TQZEL_INSTEAD_OF(read);
ssize_t readAt(int file, void* bytes, std::size_t count, long offset) TQZEL_INSTEAD_OF(pread);
ssize_t readAt64(int file, void* bytes, std::size_t count, std::int64_t offset) TQZEL_INSTEAD_OF(pread64);
ssize_t writeNext(int file, const void* bytes, std::size_t count) TQZEL_INSTEAD_OF(write);
ssize_t writeAt(int file, const void* bytes, std::size_t count, long offset) TQZEL_INSTEAD_OF(pwrite);
ssize_t writeAt64(int file, const void* bytes, std::size_t count, std::int64_t offset) TQZEL_INSTEAD_OF(pwrite64);
int cutFile(int file, long bytes) TQZEL_INSTEAD_OF(ftruncate);
int cutFile64(int file, std::int64_t bytes) TQZEL_INSTEAD_OF(ftruncate64);
int allotTo(int file, int mode, long offset, long bytes) TQZEL_INSTEAD_OF(fallocate);
int allotTo64(int file, int mode, std::int64_t offset, std::int64_t bytes) TQZEL_INSTEAD_OF(fallocate64);
int syncFile(int file) TQZEL_INSTEAD_OF(fsync);
int syncData(int file) TQZEL_INSTEAD_OF(fdatasync);
int unlinkFile(const char* file) TQZEL_INSTEAD_OF(unlink);
int renameTo(const char* from, const char* to) TQZEL_INSTEAD_OF(rename);
int renameTo2(int oldFolder, const char* from, int newFolder, const char* to, unsigned int flags)
    TQZEL_INSTEAD_OF(renameat2);
int makeFolder(const char* folder, mode_t mode) TQZEL_INSTEAD_OF(mkdir);
int lockFile(int file, int operation) TQZEL_INSTEAD_OF(flock);
int control(int file, int command, void* argument) TQZEL_INSTEAD_OF(fcntl);
int control64(int file, int command, void* argument) TQZEL_INSTEAD_OF(fcntl64);
int randomBytes(void* bytes, std::size_t count) TQZEL_INSTEAD_OF(getentropy);
int statusOf(int file, void* status) TQZEL_INSTEAD_OF(fstat);
int statusOf64(int file, void* status) TQZEL_INSTEAD_OF(fstat64);
int statusAt(const char* file, void* status) TQZEL_INSTEAD_OF(stat);
int statusAt64(const char* file, void* status) TQZEL_INSTEAD_OF(stat64);
int statusOfName(const char* file, void* status) TQZEL_INSTEAD_OF(lstat);
int statusOfName64(const char* file, void* status) TQZEL_INSTEAD_OF(lstat64);

int openFile(const char* file, int flags, mode_t mode) {
    return support::made<int>(support::opening(flags), "open", file, flags, mode);
}

int openFile64(const char* file, int flags, mode_t mode) {
    return support::made<int>(support::opening(flags), "open64", file, flags, mode);
}

int openBelow(int folder, const char* file, int flags, mode_t mode) {
    return support::made<int>(support::opening(flags), "openat", folder, file, flags, mode);
}

int openBelow64(int folder, const char* file, int flags, mode_t mode) {
    return support::made<int>(support::opening(flags), "openat64", folder, file, flags, mode);
}

int closeFile(int file) {
    return support::made<int>(FileCall::Close, "close", file);
}

ssize_t readNext(int file, void* bytes, std::size_t count) {
    return support::made<ssize_t>(FileCall::Read, "read", file, bytes, count);
}

ssize_t readAt(int file, void* bytes, std::size_t count, long offset) {
    return support::made<ssize_t>(FileCall::Read, "pread", file, bytes, count, offset);
}

ssize_t readAt64(int file, void* bytes, std::size_t count, std::int64_t offset) {
    return support::made<ssize_t>(FileCall::Read, "pread64", file, bytes, count, offset);
}

ssize_t writeNext(int file, const void* bytes, std::size_t count) {
    return support::written("write", file, bytes, count);
}

ssize_t writeAt(int file, const void* bytes, std::size_t count, long offset) {
    return support::written("pwrite", file, bytes, count, offset);
}

ssize_t writeAt64(int file, const void* bytes, std::size_t count, std::int64_t offset) {
    return support::written("pwrite64", file, bytes, count, offset);
}

int cutFile(int file, long bytes) {
    return support::made<int>(FileCall::Truncate, "ftruncate", file, bytes);
}

int cutFile64(int file, std::int64_t bytes) {
    return support::made<int>(FileCall::Truncate, "ftruncate64", file, bytes);
}

int allotTo(int file, int mode, long offset, long bytes) {
    return support::made<int>(FileCall::Allot, "fallocate", file, mode, offset, bytes);
}

int allotTo64(int file, int mode, std::int64_t offset, std::int64_t bytes) {
    return support::made<int>(FileCall::Allot, "fallocate64", file, mode, offset, bytes);
}

int syncFile(int file) {
    ++support::syncs;
    return support::made<int>(FileCall::Sync, "fsync", file);
}

int syncData(int file) {
    ++support::syncs;
    return support::made<int>(FileCall::Sync, "fdatasync", file);
}

int unlinkFile(const char* file) {
    return support::made<int>(FileCall::Unlink, "unlink", file);
}

int renameTo(const char* from, const char* to) {
    return support::made<int>(FileCall::Rename, "rename", from, to);
}

int renameTo2(int oldFolder, const char* from, int newFolder, const char* to, unsigned int flags) {
    return support::made<int>(FileCall::Rename, "renameat2", oldFolder, from, newFolder, to, flags);
}

int makeFolder(const char* folder, mode_t mode) {
    return support::made<int>(FileCall::MakeFolder, "mkdir", folder, mode);
}

int lockFile(int file, int operation) {
    return support::made<int>(FileCall::Lock, "flock", file, operation);
}

int control(int file, int command, void* argument) {
    return support::made<int>(support::controlling(command, argument), "fcntl", file, command, argument);
}

int control64(int file, int command, void* argument) {
    return support::made<int>(support::controlling(command, argument), "fcntl64", file, command, argument);
}

int randomBytes(void* bytes, std::size_t count) {
    return support::made<int>(FileCall::RandomBytes, "getentropy", bytes, count);
}

int statusOf(int file, void* status) {
    return support::made<int>(FileCall::Status, "fstat", file, status);
}

int statusOf64(int file, void* status) {
    return support::made<int>(FileCall::Status, "fstat64", file, status);
}

int statusAt(const char* file, void* status) {
    return support::made<int>(FileCall::Status, "stat", file, status);
}

int statusAt64(const char* file, void* status) {
    return support::made<int>(FileCall::Status, "stat64", file, status);
}

int statusOfName(const char* file, void* status) {
    return support::made<int>(FileCall::Status, "lstat", file, status);
}

int statusOfName64(const char* file, void* status) {
    return support::made<int>(FileCall::Status, "lstat64", file, status);
}

}  // extern "C"

#pragma GCC visibility pop
