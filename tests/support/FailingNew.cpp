#include "tests/support/FailingNew.h"

#include <cstddef>
#include <new>

namespace flashwriter::testing {

namespace {

thread_local int allocationsToFailure = 0; // 0: none is to fail
thread_local bool hasAllocationFailed = false;

void countAllocation() {
    if (allocationsToFailure > 0 && --allocationsToFailure == 0) {
        hasAllocationFailed = true;
        throw std::bad_alloc();
    }
}

} // namespace

FailingNew::FailingNew(int n) {
    hasAllocationFailed = false;
    allocationsToFailure = n;
}

FailingNew::~FailingNew() {
    allocationsToFailure = 0;
}

bool FailingNew::hasFailed() {
    return hasAllocationFailed;
}

} // namespace flashwriter::testing

// The names by which the linker knows operator new(std::size_t), and what gives a std::string its
// memory.
extern "C" {
void* __real__Znwm(std::size_t size);

void* __wrap__Znwm(std::size_t size) {
    flashwriter::testing::countAllocation();
    return __real__Znwm(size);
}

char* __real__ZNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEE9_M_createERmm(
    void* string, std::size_t& capacity, std::size_t oldCapacity);

char* __wrap__ZNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEE9_M_createERmm(
    void* string, std::size_t& capacity, std::size_t oldCapacity) {
    flashwriter::testing::countAllocation();
    return __real__ZNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEE9_M_createERmm(
        string, capacity, oldCapacity);
}
}
