#include "tests/support/ScarceMemory.h"

#include <cstdlib>
#include <new>

namespace flashwriter::testing {

std::atomic<MemoryRule> memoryRule{nullptr};

namespace {

void* allocate(std::size_t size) noexcept {
    const MemoryRule rule = memoryRule;
    if (rule != nullptr && !rule(size)) {
        return nullptr;
    }
    return std::malloc(size == 0 ? 1 : size);
}

void* allocateOrThrow(std::size_t size) {
    void* const memory = allocate(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

} // namespace

} // namespace flashwriter::testing

void* operator new(std::size_t size) {
    return flashwriter::testing::allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return flashwriter::testing::allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return flashwriter::testing::allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return flashwriter::testing::allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
