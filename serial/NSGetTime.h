#pragma once

#include <cstdint>

namespace flashwriter {

// The millisecond clock that every wait and time-out of the program is measured on.
class NSGetTime {
public:
    // Wall-clock milliseconds since the epoch, truncated. Monotonic only as far as the wall clock
    // is. Any thread; never fails.
    static std::uint64_t getTimeOfDay_msec();
};

} // namespace flashwriter
