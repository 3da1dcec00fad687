// Faults of every kind in small writes on the system's own pseudo-terminals and clock. Whatever
// happens, a write ends, tells the truth, and leaves nothing behind. Each frame in turn is met in
// virtual time, see tests/simulation/FaultLoopTest.cpp.
#include "tests/sequence/BoardFixture.h"
#include "tests/sequence/FaultCases.h"
#include "tests/support/Eventually.h"

#include <chrono>

namespace flashwriter {
namespace {

using testing::ImageFile;
using testing::patternImage;

// All attempts of all exchanges, each with the longest time-out and pause, twice for mode entry.
constexpr auto LONGEST_RUN = std::chrono::seconds(30);

class FaultLoop : public BoardFixture, public ::testing::WithParamInterface<FaultCase> {
protected:
    void runWithFaultAt(std::uint32_t n) {
        SCOPED_TRACE(GetParam().name + "@" + std::to_string(n));
        m_options.target.flash.fill = 0x5A;
        m_options.faults = {{GetParam().kind, n, GetParam().parameter}};
        const auto start = std::chrono::steady_clock::now();
        const RunRecord record = write(m_file.path(), 2);
        EXPECT_LT(std::chrono::steady_clock::now() - start, LONGEST_RUN);
        if (record.returned == RESULT_OK) {
            EXPECT_EQ(m_board.codeFlash(), testing::flashAfter(m_image, m_before));
            EXPECT_EQ(record.log, SUCCESS_LOG);
        }
    }

    Bytes m_image = patternImage(1000);
    ImageFile m_file{"image.bin", m_image};
};

TEST_P(FaultLoop, EndsInTheTruth) {
    m_board.start(m_options); // keeps a few descriptors of its own from its first start on
    m_board.stop();
    const std::size_t descriptors = entriesOf("/proc/self/fd");
    const std::size_t threads = entriesOf("/proc/self/task");
    const std::uint32_t step = GetParam().frames > 4 ? 5 : 1; // each frame waits for real time-outs
    for (std::uint32_t n = 1; n <= GetParam().frames; n += step) {
        runWithFaultAt(n);
        EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
        EXPECT_TRUE(testing::eventually([&] { return entriesOf("/proc/self/task") == threads; }));
    }
}

INSTANTIATE_TEST_SUITE_P(EveryKind, FaultLoop, ::testing::ValuesIn(everyFault()),
                         [](const auto& row) { return row.param.name; });

} // namespace
} // namespace flashwriter
