#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <iostream>
#include <system_error>

namespace support {

/// Does something in a process of its own, for half a minute at most.
template <typename Work>
pid_t startChild(Work work) {
    const pid_t child = fork();
    if (child == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child == 0) {
        constexpr unsigned int longest = 30;  // seconds
        alarm(longest);
        try {
            work();
        } catch (const std::exception& exception) {
            std::cerr << exception.what() << '\n';
            _exit(1);
        }
        _exit(0);
    }
    return child;
}

/// Waits for the end of a process.
/// @return what waitpid tells of it
inline int endOf(pid_t child) {
    int status = 0;
    if (waitpid(child, &status, 0) != child) {
        throw std::system_error(errno, std::generic_category(), "waitpid");
    }
    return status;
}

}  // namespace support
