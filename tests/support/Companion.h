#pragma once

#include "Check.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <system_error>

namespace support {

/// What a check and its companions know of one another.
template <typename Content>
class SharedMemory {
public:
    SharedMemory() : memory(mmap(nullptr, sizeof(Content), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
        if (memory == MAP_FAILED) {
            throw std::system_error(errno, std::generic_category(), "mmap");
        }
        content = new (memory) Content;
    }

    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    ~SharedMemory() { munmap(memory, sizeof(Content)); }

    Content& operator*() const { return *content; }

    Content* operator->() const { return content; }

private:
    void* memory;
    Content* content;
};

/// A process beside the check; begun before a logbook is opened, as none can be carried across a fork.
class Companion {
public:
    /// @param work is given the Failures of that process, which it tells itself
    template <typename Work>
    explicit Companion(Work work) : process(fork()) {
        if (process == -1) {
            throw std::system_error(errno, std::generic_category(), "fork");
        }
        if (process == 0) {
            end(work);
        }
    }

    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

    ~Companion() {
        if (process > 0) {
            static_cast<void>(succeeds());
        }
    }

    /// Waits for its end.
    bool succeeds() {
        int status = 0;
        while (waitpid(process, &status, 0) == -1 && errno == EINTR) {
        }
        process = 0;
        if (WIFSIGNALED(status)) {
            std::cout << "a companion was ended by signal " << WTERMSIG(status) << std::endl;
        }
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    template <typename Work>
    [[noreturn]] static void end(Work work) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        Failures failures;
        try {
            work(failures);
        } catch (const std::exception& exception) {
            failures.expect(false, exception.what());
        }
        const int outcome = failures.areNone() ? 0 : failures.conclude("a companion");
        std::exit(outcome);  // which a coverage build counts up to
    }

    pid_t process;
};

}  // namespace support
