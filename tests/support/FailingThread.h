#pragma once

#include <atomic>

namespace flashwriter::testing {

// While true, std::thread fails to start one, as on a system that has no more to give.
extern bool failThreadCreation;

// The thread that std::thread fails to start, the n-th from now on, counted from 1; it comes down
// with each. Below 1 there is none.
extern std::atomic<long> failingThread;

} // namespace flashwriter::testing
