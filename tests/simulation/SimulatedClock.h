#pragma once

#include "tests/simulation/SimulatedPort.h"

#include <chrono>
#include <cstdint>
#include <random>
#include <vector>

namespace flashwriter::simulation {

// Somebody sets the wall clock.
struct ClockJump {
    std::uint32_t write = 0;        // after this many writes to the device, counted from 1,
    std::uint32_t readings = 0;     // and so many readings of the clock behind that write
    std::chrono::milliseconds by{}; // backwards when negative
};

// How virtual time passes.
struct ClockOptions {
    VirtualTime step = std::chrono::microseconds(50); // each reading takes so long at least
    VirtualTime variation{0};                         // and up to so much longer
    std::uint32_t seed = 0;                           // from which the longer is drawn
    std::vector<ClockJump> jumps;
};

// Virtual time, which passes by being looked at, and the wall clock that the program sees of it.
class SimulatedClock {
public:
    explicit SimulatedClock(ClockOptions options);

    VirtualTime now() const { return m_now; }
    // Lets the time of one reading pass.
    void tick();
    // What the wall clock shows, in milliseconds since the epoch.
    std::uint64_t wallMilliseconds() const;
    // The program has written to its device.
    void noteWrite();

private:
    void jumpIfDue();

    ClockOptions m_options;
    std::minstd_rand m_random;
    VirtualTime m_now{};
    VirtualTime m_wall;
    std::uint32_t m_writes = 0;
    std::uint32_t m_readings = 0; // since the last write
};

} // namespace flashwriter::simulation
