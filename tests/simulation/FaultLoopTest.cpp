// Every kind of fault at every frame of a small write, one after the other, in virtual time.
// Whatever happens, a write ends, tells the truth, and leaves nothing behind.
#include "tests/sequence/FaultCases.h"
#include "tests/sequence/RunAgreement.h"
#include "tests/simulation/SimulationFixture.h"

namespace flashwriter::simulation {
namespace {

class SimulatedFault : public SimulationFixture, public ::testing::WithParamInterface<FaultCase> {
protected:
    // A fault of the lines need not show in what the board sees.
    static bool isFrameFault() { return GetParam().frames >= HOST_FRAMES; }

    void runWithFaultAt(std::uint32_t n) {
        SCOPED_TRACE(GetParam().name + "@" + std::to_string(n));
        m_board.faults = {{GetParam().kind, n, GetParam().parameter}};
        const SimulatedWrite run = write();
        if (isFrameFault()) {
            EXPECT_NE(run.transcript, m_undisturbed) << "there was no such frame";
        }
        EXPECT_LT(run.duration, LONGEST_RUN);
        expectAgreement(run.record);
        expectTruth(run);
    }

    const std::string m_undisturbed = write().transcript;
};

TEST_P(SimulatedFault, EndsInTheTruthAtEveryFrame) {
    for (std::uint32_t n = 1; n <= GetParam().frames; ++n) {
        runWithFaultAt(n);
    }
}

INSTANTIATE_TEST_SUITE_P(EveryKind, SimulatedFault, ::testing::ValuesIn(everyFault()),
                         [](const auto& row) { return row.param.name; });

} // namespace
} // namespace flashwriter::simulation
