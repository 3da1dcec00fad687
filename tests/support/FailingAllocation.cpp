#include "tests/support/FailingAllocation.h"

#include <new>

namespace flashwriter::testing {

FailingAllocation failingAllocation;

namespace {

bool mustFail(std::size_t size) {
    ++failingAllocation.asked;
    return size != 0 && size == failingAllocation.size && --failingAllocation.spared < 0;
}

} // namespace

} // namespace flashwriter::testing

// The names by which the linker knows operator new[](std::size_t, const std::nothrow_t&).
extern "C" {
void* __real__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept;

void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept {
    return flashwriter::testing::mustFail(size) ? nullptr : __real__ZnamRKSt9nothrow_t(size, tag);
}
}
