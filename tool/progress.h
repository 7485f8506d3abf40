#pragma once

#include <unistd.h>

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <string>

namespace tool {

/// How far long work is, on a terminal, from the second second on.
class Progress {
public:
    explicit Progress(std::int64_t expected) : all(expected), shows(isatty(STDERR_FILENO) == 1) {}

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    ~Progress() {
        if (lastShown != start) {
            std::cerr << "\r\x1b[K" << std::flush;
        }
    }

    void advance(std::int64_t count) { advanceTo(done + count, all); }

    void advanceTo(std::int64_t reached, std::int64_t expected) {
        done = reached;
        all = expected;
        const auto now = std::chrono::steady_clock::now();
        if (!shows || now - start < std::chrono::seconds(1) || now - lastShown < std::chrono::milliseconds(100)) {
            return;
        }
        lastShown = now;
        constexpr std::size_t columns = 40;
        const std::size_t filled =
            all == 0 ? 0 : static_cast<std::size_t>(std::min(done, all) * std::int64_t{columns} / all);
        std::cerr << fmt::format("\r[{}{}] {}", std::string(filled, '='), std::string(columns - filled, ' '), done)
                  << std::flush;
    }

private:
    std::int64_t all;
    std::int64_t done = 0;
    bool shows;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point lastShown = start;
};

}  // namespace tool
