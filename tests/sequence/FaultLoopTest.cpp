// Every kind of fault at every frame of a small write. Whatever happens, a write ends, tells the
// truth, and leaves nothing behind.
#include "tests/sequence/BoardFixture.h"
#include "tests/support/Eventually.h"

#include <chrono>
#include <ostream>

namespace flashwriter {
namespace {

using board::Fault;
using board::FaultKind;
using testing::ImageFile;
using testing::patternImage;

struct FaultCase {
    std::string name;
    FaultKind kind;
    std::int64_t parameter;
    std::uint32_t frames; // how many frames of the kind that it counts a write has
};

void PrintTo(const FaultCase& row, std::ostream* out) {
    *out << row.name;
}

// One dirty block: what the board answers and hears, see FailedWriteTest.
constexpr std::uint32_t REPLIES = 14;
constexpr std::uint32_t HOST_FRAMES = 11;

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
    for (std::uint32_t n = 1; n <= GetParam().frames; n += FRAME_STEP) {
        runWithFaultAt(n);
        EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
        EXPECT_TRUE(testing::eventually([&] { return entriesOf("/proc/self/task") == threads; }));
    }
}

INSTANTIATE_TEST_SUITE_P(
    EveryFrame, FaultLoop,
    ::testing::Values(
        FaultCase{"Silence", FaultKind::silence, Fault::kDefault, REPLIES},
        FaultCase{"ShortDelay", FaultKind::delay, 50, REPLIES},
        FaultCase{"LongDelay", FaultKind::delay, 350, REPLIES},
        FaultCase{"WrongSum", FaultKind::wrongSum, Fault::kDefault, REPLIES},
        FaultCase{"LongerLen", FaultKind::wrongLength, 1, REPLIES},
        FaultCase{"ShorterLen", FaultKind::wrongLength, -1, REPLIES},
        FaultCase{"WrongStart", FaultKind::wrongStart, Fault::kDefault, REPLIES},
        FaultCase{"WrongEnd", FaultKind::wrongEnd, Fault::kDefault, REPLIES},
        FaultCase{"Truncated", FaultKind::truncated, Fault::kDefault, REPLIES},
        FaultCase{"Doubled", FaultKind::doubled, Fault::kDefault, REPLIES},
        FaultCase{"FiveBytes", FaultKind::resized, 5, REPLIES},
        FaultCase{"SixBytes", FaultKind::resized, 6, REPLIES},
        FaultCase{"SevenBytes", FaultKind::resized, 7, REPLIES},
        FaultCase{"NotBlank", FaultKind::status, 0x1B, REPLIES},
        FaultCase{"Accepted", FaultKind::status, 0x06, REPLIES},
        FaultCase{"Refused", FaultKind::status, 0x05, REPLIES},
        FaultCase{"NoiseBefore", FaultKind::noiseBefore, Fault::kDefault, REPLIES},
        FaultCase{"NoiseAfter", FaultKind::noiseAfter, Fault::kDefault, REPLIES},
        FaultCase{"UnpluggedInReply", FaultKind::unplugReply, Fault::kDefault, REPLIES},
        FaultCase{"UnpluggedInFrame", FaultKind::unplugFrame, Fault::kDefault, HOST_FRAMES},
        FaultCase{"Stuck", FaultKind::stuck, Fault::kDefault, HOST_FRAMES},
        FaultCase{"StuckShort", FaultKind::stuck, 2, HOST_FRAMES},
        FaultCase{"SlowEntry", FaultKind::slowEntry, Fault::kDefault, 2},
        FaultCase{"LinesUnreadable", FaultKind::failGet, Fault::kDefault, 3},
        FaultCase{"LinesFixed", FaultKind::failSet, Fault::kDefault, 4},
        FaultCase{"NoBreak", FaultKind::failBreak, Fault::kDefault, 3}),
    [](const ::testing::TestParamInfo<FaultCase>& row) { return row.param.name; });

} // namespace
} // namespace flashwriter
