#pragma once

#include "TemporaryFolder.h"
#include "run.h"

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <string>
#include <thread>

/// The tool following a logbook, ended with this object.
class Follower {
public:
    explicit Follower(const std::string& command) {
        const support::Outcome outcome =
            support::run(command + " >" + (folder / "output").string() + " 2>&1 </dev/null & echo $!");
        process = std::stoi(outcome.output);
    }

    Follower(const Follower&) = delete;
    Follower& operator=(const Follower&) = delete;

    ~Follower() { kill(process, SIGKILL); }

    /// What it has printed, as soon as that is so long.
    std::string printed(std::size_t length) const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        std::string text;
        while (text.size() < length && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            text = support::contentOf(folder / "output");
        }
        return text;
    }

private:
    support::TemporaryFolder folder;
    pid_t process;
};
