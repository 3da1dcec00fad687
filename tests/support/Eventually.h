#pragma once

#include <chrono>
#include <thread>

namespace flashwriter::testing {

// Whether a condition comes true within a time that only a hang exceeds.
template <class Condition>
bool eventually(const Condition& condition) {
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > giveUp) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace flashwriter::testing
