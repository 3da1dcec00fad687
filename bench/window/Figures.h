#pragma once

#include <chrono>
#include <vector>

namespace flashwriter::bench {

using Durations = std::vector<std::chrono::microseconds>;

// All in milliseconds.
struct Spread {
    double median = 0.0;
    double p99 = 0.0;
    double largest = 0.0;
};

Spread spreadOf(const Durations& durations); // zeros when there are none

} // namespace flashwriter::bench
