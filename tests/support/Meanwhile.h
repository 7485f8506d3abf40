#pragma once

#include "calls.h"

#include <functional>
#include <utility>

namespace support {

/// While it lasts, something happens just before each of the next system calls of a kind, as often as it is told, but
/// not before the first so many. For programs that link calls.cpp; one at a time.
class Meanwhile {
public:
    Meanwhile(FileCall before, int times, std::function<void()> happens, int skipped = 0)
        : awaited(before), toSkip(skipped), left(times), event(std::move(happens)) {
        self = this;
        setFates([](FileCall call) {
            self->meet(call);
            return Fate();
        });
    }

    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;

    ~Meanwhile() { setFates(nullptr); }

private:
    void meet(FileCall call) {
        if (call != awaited || toSkip-- > 0 || left == 0) {
            return;
        }
        --left;
        event();
    }

    static inline Meanwhile* self = nullptr;
    FileCall awaited;
    int toSkip;
    int left;
    std::function<void()> event;
};

}  // namespace support
