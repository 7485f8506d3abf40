#pragma once

#include <chrono>
#include <thread>

namespace standalone {

/// How long a lock of another process is waited for.
inline constexpr std::chrono::milliseconds lockTimeout(5000);

/// Waits for others in short steps: long ones starve beside somebody who adds without pause.
class Waiting {
public:
    explicit Waiting(std::chrono::milliseconds most = lockTimeout) : end(std::chrono::steady_clock::now() + most) {}

    bool isOver() const { return std::chrono::steady_clock::now() > end; }

    /// @return whether to try again
    bool goesOn() const {
        constexpr std::chrono::microseconds step(200);
        const bool isInTime = !isOver();
        if (isInTime) {
            std::this_thread::sleep_for(step);
        }
        return isInTime;
    }

private:
    std::chrono::steady_clock::time_point end;
};

}  // namespace standalone
