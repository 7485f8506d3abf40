#include "Syncs.h"

#include <sys/syscall.h>
#include <unistd.h>

extern "C" {

#pragma GCC visibility push(default)

int fsync(int fd) {
    ++support::syncs;
    return static_cast<int>(syscall(SYS_fsync, fd));
}

int fdatasync(int fildes) {
    ++support::syncs;
    return static_cast<int>(syscall(SYS_fdatasync, fildes));
}

#pragma GCC visibility pop

}  // extern "C"
