#pragma once

#include <chrono>

namespace flashwriter::board {

// A moment, or a span, of the board's time: nanoseconds since the start of some steady clock. The
// simulation never asks what time it is; whoever drives it says so, which is what lets a test run
// an hour of erasing in a microsecond.
using BoardTime = std::chrono::nanoseconds;

} // namespace flashwriter::board
