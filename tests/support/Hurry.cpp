#include "Hurry.h"

#include "insteadOf.h"

#include <unistd.h>
#include <ctime>

#include <atomic>
#include <cstdint>

namespace support {

namespace {

std::atomic<std::int64_t> speed = 1;

}  // namespace

/// As the C library's function has it, however long times are in these sources.
struct Moment {
    long seconds;
    long nanoseconds;
};

Hurry::Hurry() {
    speed = 100;
}

Hurry::~Hurry() {
    speed = 1;
}

}  // namespace support

#pragma GCC visibility push(default)

extern "C" {

int clockTime(clockid_t clock, support::Moment* time) TQZEL_INSTEAD_OF(clock_gettime);
int sleepFor(useconds_t microseconds) TQZEL_INSTEAD_OF(usleep);

int clockTime(clockid_t clock, support::Moment* time) {
    const int outcome = support::callBehind<int>("clock_gettime", clock, time);
    if (clock == CLOCK_MONOTONIC) {
        constexpr std::int64_t second = 1000000000;
        const std::int64_t nanoseconds = support::speed * (time->seconds * second + time->nanoseconds);
        *time = {static_cast<long>(nanoseconds / second), static_cast<long>(nanoseconds % second)};
    }
    return outcome;
}

int sleepFor(useconds_t microseconds) {
    return support::callBehind<int>("usleep", static_cast<useconds_t>(microseconds / support::speed));
}

}  // extern "C"

#pragma GCC visibility pop
