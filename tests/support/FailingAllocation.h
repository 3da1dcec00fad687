#pragma once

#include <cstddef>

namespace flashwriter::testing {

// What happens to new(std::nothrow) T[] in the program that this is linked into.
struct FailingAllocation {
    std::size_t size = 0; // allocations of so many bytes fail; 0: none
    int spared = 0;       // so many of them succeed first
    int asked = 0;        // how many of any size there were
};

extern FailingAllocation failingAllocation;

} // namespace flashwriter::testing
