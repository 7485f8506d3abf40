#pragma once

#include "calls.h"

#include <functional>
#include <utility>

namespace support {

/// While it lasts, something happens just before each of the next system calls of a kind, as often as it is told. For
/// programs that link calls.cpp; one at a time.
class Meanwhile {
public:
    Meanwhile(FileCall before, int times, std::function<void()> happens)
        : awaited(before), left(times), event(std::move(happens)) {
        self = this;
        setFates([](FileCall call) {
            if (call == self->awaited && self->left > 0) {
                --self->left;
                self->event();
            }
            return Fate();
        });
    }

    Meanwhile(const Meanwhile&) = delete;
    Meanwhile& operator=(const Meanwhile&) = delete;

    ~Meanwhile() { setFates(nullptr); }

private:
    static inline Meanwhile* self = nullptr;
    FileCall awaited;
    int left;
    std::function<void()> event;
};

}  // namespace support
