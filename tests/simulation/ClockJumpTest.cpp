// Somebody sets the clock in the middle of a write. The program's waits are on that clock, so the
// write may fail; but it ends, and it does not lie.
#include "tests/simulation/SimulationFixture.h"

#include <chrono>

namespace flashwriter::simulation {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

constexpr std::uint32_t WRITES = 12; // to the device: the zero byte and eleven frames

class ClockJumps : public SimulationFixture, public ::testing::WithParamInterface<milliseconds> {
protected:
    void runWithJumpAt(std::uint32_t write, std::uint32_t readings) {
        SCOPED_TRACE("after write " + std::to_string(write) + " and " + std::to_string(readings) +
                     " readings");
        m_clock.jumps = {{write, readings, GetParam()}};
        const SimulatedWrite run = this->write();
        EXPECT_LT(run.duration, LONGEST_RUN);
        expectTruth(run);
        ++m_runs;
        m_failures += run.record.returned == RESULT_OK ? 0 : 1;
    }

    int m_runs = 0;
    int m_failures = 0;
};

// Readings 0 is while the frame is on the wire, 40 while a reply may be, 200 in a pause or wait.
TEST_P(ClockJumps, EndInTheTruthWhereverTheyCome) {
    for (std::uint32_t write = 0; write <= WRITES; ++write) {
        for (const std::uint32_t readings : {0U, 1U, 10U, 40U, 200U}) {
            runWithJumpAt(write, readings);
        }
    }
    EXPECT_GT(m_failures, 0) << "no jump had any effect";
    EXPECT_LT(m_failures, m_runs) << "no write succeeded";
}

TEST_P(ClockJumps, EndInTheTruthWhenOneFollowsTheOther) {
    m_clock.jumps.clear();
    for (std::uint32_t write = 1; write <= 60; ++write) {
        m_clock.jumps.push_back({write, 20, write % 2 == 0 ? GetParam() : -GetParam()});
    }
    const SimulatedWrite run = write();
    EXPECT_LT(run.duration, LONGEST_RUN);
    expectTruth(run);
}

INSTANTIATE_TEST_SUITE_P(Forwards, ClockJumps,
                         ::testing::Values(milliseconds(150), hours(1), hours(24)));
INSTANTIATE_TEST_SUITE_P(Backwards, ClockJumps,
                         ::testing::Values(milliseconds(-150), hours(-1), hours(-24)));

} // namespace
} // namespace flashwriter::simulation
