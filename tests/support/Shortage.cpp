#include "Shortage.h"

#include <malloc.h>

#include <cstddef>
#include <cstdlib>

using support::memorySupply;

namespace {

std::int64_t sizeOf(void* block) {
    return static_cast<std::int64_t>(malloc_usable_size(block));
}

void* counted(void* block) {
    memorySupply.live += block != nullptr ? 1 : 0;
    memorySupply.use(sizeOf(block));
    return block;
}

}  // namespace

extern "C" {

void* systemMalloc(std::size_t size) __asm__("__libc_malloc");
void* systemCalloc(std::size_t count, std::size_t size) __asm__("__libc_calloc");
void* systemRealloc(void* block, std::size_t size) __asm__("__libc_realloc");
void systemFree(void* block) __asm__("__libc_free");

#pragma GCC visibility push(default)

void* malloc(std::size_t size) noexcept {
    return memorySupply.grants() ? counted(systemMalloc(size)) : nullptr;
}

void* calloc(std::size_t nmemb, std::size_t size) noexcept {
    return memorySupply.grants() ? counted(systemCalloc(nmemb, size)) : nullptr;
}

void free(void* ptr) noexcept {
    memorySupply.live -= ptr != nullptr ? 1 : 0;
    memorySupply.use(-sizeOf(ptr));
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
    if (!memorySupply.grants()) {
        return nullptr;
    }
    const std::int64_t before = sizeOf(ptr);
    void* const block = systemRealloc(ptr, size);
    memorySupply.use(block != nullptr ? sizeOf(block) - before : 0);
    return block;
}

#pragma GCC visibility pop

}  // extern "C"
