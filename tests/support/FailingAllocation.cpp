#include "tests/support/FailingAllocation.h"

#include <new>

namespace flashwriter::testing {

std::size_t failingAllocationSize = 0;

} // namespace flashwriter::testing

// The names by which the linker knows operator new[](std::size_t, const std::nothrow_t&).
extern "C" {
void* __real__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept;

void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept {
    const bool fails = size != 0 && size == flashwriter::testing::failingAllocationSize;
    return fails ? nullptr : __real__ZnamRKSt9nothrow_t(size, tag);
}
}
