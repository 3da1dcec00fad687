#include "tests/simulation/SimulatedClock.h"

#include <utility>

namespace flashwriter::simulation {

namespace {

// Far enough from the epoch for a clock to go back by any jump of a test.
constexpr VirtualTime WALL_AT_START = std::chrono::seconds(1'700'000'000);

} // namespace

SimulatedClock::SimulatedClock(ClockOptions options)
    : m_options(std::move(options)), m_random(m_options.seed), m_wall(WALL_AT_START) {}

void SimulatedClock::tick() {
    VirtualTime passed = m_options.step;
    if (m_options.variation > VirtualTime::zero()) {
        // Not a standard distribution: a seed must mean the same run with every standard library.
        passed +=
            VirtualTime(static_cast<std::int64_t>(m_random()) % (m_options.variation.count() + 1));
    }
    m_now += passed;
    m_wall += passed;
    jumpIfDue();
    ++m_readings;
}

void SimulatedClock::jumpIfDue() {
    for (const ClockJump& jump : m_options.jumps) {
        if (jump.write == m_writes && jump.readings == m_readings) {
            m_wall += jump.by;
        }
    }
}

std::uint64_t SimulatedClock::wallMilliseconds() const {
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(m_wall).count());
}

void SimulatedClock::noteWrite() {
    ++m_writes;
    m_readings = 0;
}

} // namespace flashwriter::simulation
