// Whole writes in virtual time: they come out as on a real wire, each time the same.
#include "tests/simulation/SimulationFixture.h"

#include <chrono>

namespace flashwriter::simulation {

using std::chrono::milliseconds;

namespace {

using board::Fault;
using board::FaultKind;

class Simulated : public SimulationFixture {};

// Everything about a run that the program or the board shows.
void expectSame(const SimulatedWrite& one, const SimulatedWrite& other) {
    EXPECT_EQ(one.transcript, other.transcript);
    EXPECT_EQ(one.record.returned, other.record.returned);
    EXPECT_EQ(one.record.log, other.record.log);
    EXPECT_EQ(one.record.window->progress, other.record.window->progress);
    EXPECT_EQ(one.duration, other.duration);
    EXPECT_EQ(one.codeAfter, other.codeAfter);
}

TEST_F(Simulated, WriteSucceeds) {
    const SimulatedWrite run = write();
    EXPECT_EQ(run.record.returned, RESULT_OK) << run.transcript;
    EXPECT_EQ(run.record.log, SUCCESS_LOG);
    EXPECT_EQ(run.codeAfter, testing::flashAfter(m_image, run.codeBefore));
    EXPECT_EQ(run.violations, 0U) << run.transcript;
}

// The wire alone takes 30 ms for these frames, and the pauses before them 11 to 22.
TEST_F(Simulated, TimeIsThatOfTheWireAndTheWaits) {
    const VirtualTime plain = write().duration;
    EXPECT_GT(plain, milliseconds(41));
    EXPECT_LT(plain, milliseconds(70));
    m_board.target.eraseTime = milliseconds(200);
    const VirtualTime slowErase = write().duration;
    EXPECT_GE(slowErase, plain + milliseconds(199));
    EXPECT_LE(slowErase, plain + milliseconds(202));
}

// Five times a pause, 200 ms for the answer and 100 ms before the next try; then the same with DTR
// the other way round.
TEST_F(Simulated, ASilentBoardCostsTheTimeOutsAndNoMore) {
    m_board.faults = {{FaultKind::silence, 0, Fault::kDefault}};
    const SimulatedWrite run = write();
    EXPECT_EQ(run.record.returned, RESULT_MODE_ENTRY_TIMEOUT);
    EXPECT_GE(run.duration, milliseconds(2 * 5 * 301));
    EXPECT_LE(run.duration, milliseconds(2 * 5 * 306 + 20));
}

TEST_F(Simulated, AnswersThatComeLaterThanTheTimeOutAreTriedAgain) {
    m_board.faults = {{FaultKind::delay, 2, 150}}; // Reset's, which may take 100 ms
    const SimulatedWrite run = write();
    EXPECT_NE(run.transcript.find("fault: delay"), std::string::npos);
    expectTruth(run);
}

TEST_F(Simulated, TheSameSeedIsTheSameRun) {
    m_clock.step = std::chrono::microseconds(20);
    m_clock.variation = std::chrono::microseconds(80);
    m_board.faults = {{FaultKind::silence, 6, Fault::kDefault}, {FaultKind::noiseBefore, 9, 3}};
    std::string first;
    for (m_clock.seed = 1; m_clock.seed <= 5; ++m_clock.seed) {
        const SimulatedWrite run = write();
        expectSame(run, write());
        EXPECT_NE(run.transcript, first) << "another seed is another run";
        first = first.empty() ? run.transcript : first;
    }
}

TEST_F(Simulated, APortThatGoesAwayEndsTheWrite) {
    m_board.faults = {{FaultKind::unplugReply, 7, Fault::kDefault}};
    const SimulatedWrite run = write();
    EXPECT_EQ(run.record.returned, RESULT_RECEIVE_TIMEOUT) << run.transcript;
}

TEST_F(Simulated, AStuckAdapterTakesFramesInPartOrNotAtAll) {
    m_board.faults = {{FaultKind::stuck, 7, 2}}; // the first data frame
    const SimulatedWrite run = write();
    EXPECT_EQ(run.record.returned, RESULT_RECEIVE_TIMEOUT) << run.transcript;
    EXPECT_EQ(run.record.outcome.ComInfo.Retry, 4U);
}

} // namespace
} // namespace flashwriter::simulation
