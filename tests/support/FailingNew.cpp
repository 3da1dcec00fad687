#include "tests/support/FailingNew.h"

#include <atomic>
#include <cstddef>
#include <new>

namespace flashwriter::testing {

namespace {

thread_local int allocationsToFailure = 0; // 0: none is to fail
thread_local bool hasAllocationFailed = false;

// Of the threads that are elsewhere.
std::atomic<int> allocationsToFailures = 0; // from the first that fails on it is 0 or less
std::atomic<int> failuresLeft = 0;
std::atomic<bool> hasOneFailed = false;
thread_local bool isElsewhere = true;

void countAllocationElsewhere() {
    if (isElsewhere && failuresLeft > 0 && --allocationsToFailures <= 0 && failuresLeft-- > 0) {
        hasOneFailed = true;
        throw std::bad_alloc();
    }
}

void countAllocation() {
    countAllocationElsewhere();
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

FailingNewElsewhere::FailingNewElsewhere(int n, int failures) {
    isElsewhere = false;
    hasOneFailed = false;
    allocationsToFailures = n;
    failuresLeft = failures;
}

FailingNewElsewhere::~FailingNewElsewhere() {
    failuresLeft = 0;
    isElsewhere = true;
}

bool FailingNewElsewhere::hasFailed() {
    return hasOneFailed;
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
