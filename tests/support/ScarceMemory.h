// Replaces the global allocation functions of the program that it is linked into.
#pragma once

#include <atomic>
#include <cstddef>

namespace flashwriter::testing {

// Whether there is memory for so many bytes. Asked on the thread that wants them, before each
// allocation; must not allocate.
using MemoryRule = bool (*)(std::size_t size);

// nullptr: there always is.
extern std::atomic<MemoryRule> memoryRule;

} // namespace flashwriter::testing
