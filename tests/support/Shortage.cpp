#include "Shortage.h"

#include <cstddef>
#include <cstdlib>

using support::memorySupply;

extern "C" {

void* systemMalloc(std::size_t size) __asm__("__libc_malloc");
void* systemCalloc(std::size_t count, std::size_t size) __asm__("__libc_calloc");
void* systemRealloc(void* block, std::size_t size) __asm__("__libc_realloc");
void systemFree(void* block) __asm__("__libc_free");

#pragma GCC visibility push(default)

void* malloc(std::size_t size) noexcept {
    return memorySupply.grants() ? memorySupply.count(systemMalloc(size)) : nullptr;
}

void* calloc(std::size_t nmemb, std::size_t size) noexcept {
    return memorySupply.grants() ? memorySupply.count(systemCalloc(nmemb, size)) : nullptr;
}

void free(void* ptr) noexcept {
    memorySupply.live -= ptr != nullptr ? 1 : 0;
    systemFree(ptr);
}

void* realloc(void* ptr, std::size_t size) noexcept {
    if (ptr == nullptr) {
        return malloc(size);
    }
    if (size == 0) {
        free(ptr);
        return nullptr;
    }
    return memorySupply.grants() ? systemRealloc(ptr, size) : nullptr;
}

#pragma GCC visibility pop

}  // extern "C"
