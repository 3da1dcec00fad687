#pragma once

#include <cstdint>
#include <sys/types.h>

namespace flashwriter::bench {

// What a process that runs has cost so far, all its threads together. Throw std::runtime_error when
// there is no such process.
std::int64_t processorTicks(pid_t process); // user and system, in the system's clock ticks (10 ms)
double peakMib(pid_t process);              // largest resident set

} // namespace flashwriter::bench
