#pragma once

#include <cstddef>

namespace flashwriter::testing {

// Allocations of this many bytes by new(std::nothrow) T[] fail; 0: none.
extern std::size_t failingAllocationSize;

} // namespace flashwriter::testing
