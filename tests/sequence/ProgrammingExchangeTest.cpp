#include "sequence/ProgrammingExchange.h"

#include "tests/sequence/DiagnosticLines.h"
#include "tests/sequence/ExchangeFixture.h"
#include "tests/support/FailingAllocation.h"

#include <numeric>

namespace flashwriter {
namespace {

using testing::Bytes;
using testing::targetFrame;

const Bytes TAKEN = targetFrame({0x06, 0x06});

class RecordingProgrammingExchange : public ProgrammingExchange {
public:
    using ProgrammingExchange::ProgrammingExchange;
    void UpdateProgress(std::uint64_t step, std::uint64_t percentage) override {
        m_calls.emplace_back(step, percentage);
    }
    std::vector<std::pair<std::uint64_t, std::uint64_t>> m_calls;
};

class ProgrammingExchangeTest : public ExchangeFixture {
protected:
    ProgrammingExchangeTest() {
        m_progress.Step = 103;
        m_progress.InitProgress = 20;
        m_progress.CurrentProgress = 20;
        m_progress.Share = 80.0;
    }
    ~ProgrammingExchangeTest() override { testing::failingAllocation = {}; }

    static Bytes image(std::size_t size) {
        Bytes bytes(size);
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
        }
        return bytes;
    }
    ResultCode program(const Bytes& bytes) {
        const std::uint64_t blocks = (bytes.size() + 1023) / 1024;
        return m_programming.comProgrammingProc(0, blocks * 1024 - 1, bytes.data(), bytes.size(),
                                                true);
    }
    void takeFrames(int count) {
        for (int i = 0; i < count; ++i) {
            m_target.answer(TAKEN);
        }
    }
    void takeFinalFrame() {
        Bytes both = TAKEN;
        both.insert(both.end(), ACCEPTED.begin(), ACCEPTED.end());
        m_target.answer(both);
    }
    void takeBlock() {
        m_target.answer(ACCEPTED);
        takeFrames(3);
    }

    _PROGRESSINIFO m_progress{};
    RecordingProgrammingExchange m_programming{m_link, m_progress};
};

Bytes twice(Bytes frame) {
    const Bytes again = frame;
    frame.insert(frame.end(), again.begin(), again.end());
    return frame;
}

// The n-th data frame as the target should see it, worked out from the padded image.
Bytes dataFrame(const Bytes& image, std::size_t number, bool last) {
    Bytes padded = image;
    padded.resize((image.size() + 1023) / 1024 * 1024, 0xFF);
    const auto begin = padded.begin() + static_cast<std::ptrdiff_t>(number * 256);
    Bytes frame(begin, begin + 256);
    frame.insert(frame.begin(), {0x02, 0x00});
    const unsigned sum = std::accumulate(begin, begin + 256, 0U);
    frame.push_back(static_cast<std::uint8_t>(0x100 - sum % 0x100));
    frame.push_back(last ? 0x03 : 0x17);
    return frame;
}

TEST_F(ProgrammingExchangeTest, SendsFourFramesForEachBlockPaddedToItsEnd) {
    const Bytes bytes = image(1500);
    m_target.answer(ACCEPTED);
    takeFrames(7);
    takeFinalFrame();
    EXPECT_EQ(program(bytes), RESULT_OK);
    const std::vector<Bytes> frames = m_target.frames();
    ASSERT_EQ(frames.size(), 9U);
    EXPECT_EQ(frames[0], (Bytes{0x01, 0x07, 0x40, 0, 0, 0, 0xFF, 0x07, 0x00, 0xB3, 0x03}));
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(frames[i + 1], dataFrame(bytes, i, i == 7)) << i;
    }
    EXPECT_EQ(m_context.ComInfo.Command, 0x40);
}

TEST_F(ProgrammingExchangeTest, AWholeBlockNeedsNoPadding) {
    const Bytes bytes = image(1024);
    takeBlock();
    takeFinalFrame();
    EXPECT_EQ(program(bytes), RESULT_OK);
    EXPECT_EQ(m_target.frames().back(), dataFrame(bytes, 3, true));
}

TEST_F(ProgrammingExchangeTest, ReportsProgressOfEachBlockBeforeItIsSent) {
    m_target.answer(ACCEPTED);
    takeFrames(11);
    takeFinalFrame();
    EXPECT_EQ(program(image(3000)), RESULT_OK);
    EXPECT_EQ(m_programming.m_calls, (std::vector<std::pair<std::uint64_t, std::uint64_t>>{
                                         {103, 46}, {103, 73}, {103, 100}}));
    EXPECT_DOUBLE_EQ(m_progress.Incremental, 80.0 / 3);
    EXPECT_EQ(m_progress.CurrentProgress, 100U);
}

TEST_F(ProgrammingExchangeTest, AnEmptyImageSendsTheCommandAlone) {
    m_target.answer(ACCEPTED);
    EXPECT_EQ(m_programming.comProgrammingProc(0, UINT64_MAX, nullptr, 0, true), RESULT_OK);
    EXPECT_EQ(m_target.frames(), (std::vector<Bytes>{{0x01, 0x07, 0x40, 0x00, 0x00, 0x00, 0xFF,
                                                      0xFF, 0xFF, 0xBC, 0x03}}));
    m_target.answer(targetFrame({0x05}));
    EXPECT_EQ(m_programming.comProgrammingProc(0, UINT64_MAX, nullptr, 0, true),
              RESULT_COMMAND_FRAME_ABORT);
}

TEST_F(ProgrammingExchangeTest, ARefusedCommandSendsNoData) {
    m_target.answer(targetFrame({0x05}));
    EXPECT_EQ(program(image(1500)), RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(m_target.frames().size(), 1U);
    EXPECT_TRUE(m_programming.m_calls.empty());
}

TEST_F(ProgrammingExchangeTest, AShortStatusIsTakenToo) {
    takeBlock();
    m_target.answer(twice(ACCEPTED));
    EXPECT_EQ(program(image(1)), RESULT_OK);
}

TEST_F(ProgrammingExchangeTest, ARefusedFrameEndsEverythingAtOnce) {
    for (const Bytes& status : {Bytes{0x06, 0x07}, Bytes{0x1C, 0x06}, Bytes{0x1C}}) {
        const std::size_t before = m_target.frames().size();
        m_target.answer(ACCEPTED);
        m_target.answer(targetFrame(status));
        EXPECT_EQ(program(image(1024)), RESULT_DATA_FRAME_ABORT);
        EXPECT_EQ(m_target.frames().size(), before + 2);
        EXPECT_EQ(m_context.ComInfo.DST1, status[0]);
        EXPECT_EQ(m_context.ComInfo.DST2, status.size() > 1 ? status[1] : 0);
    }
}

TEST_F(ProgrammingExchangeTest, AStatusOfAnotherSizeEndsEverythingAtOnce) {
    m_target.answer(ACCEPTED);
    m_target.answer(targetFrame({0x06, 0x06, 0x06}));
    EXPECT_EQ(program(image(1024)), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_target.frames().size(), 2U);
}

TEST_F(ProgrammingExchangeTest, ADamagedStatusEndsEverythingAtOnce) {
    m_target.answer(ACCEPTED);
    m_target.answer({0x02, 0x02, 0x06, 0x06, 0xF1, 0x03});
    EXPECT_EQ(program(image(1024)), RESULT_SUM_ERROR);
    m_target.answer(ACCEPTED);
    m_target.answer({0x02, 0x01, 0x06, 0xF9, 0x17});
    EXPECT_EQ(program(image(1024)), RESULT_FRAME_FORMAT_ERROR);
    EXPECT_EQ(m_target.frames().size(), 4U);
}

TEST_F(ProgrammingExchangeTest, AFrameThatIsNotAnsweredIsSentAgain) {
    hurry();
    const Bytes bytes = image(1024);
    m_target.answer(ACCEPTED);
    m_target.answer(TAKEN);
    m_target.beSilent();
    takeFrames(2);
    takeFinalFrame();
    EXPECT_EQ(program(bytes), RESULT_OK);
    const std::vector<Bytes> frames = m_target.frames();
    ASSERT_EQ(frames.size(), 6U);
    EXPECT_EQ(frames[2], dataFrame(bytes, 1, false));
    EXPECT_EQ(frames[3], dataFrame(bytes, 1, false));
}

TEST_F(ProgrammingExchangeTest, AFrameThatIsNeverAnsweredEndsAfterTheLastAttempt) {
    m_context.RetryWaitTime = 1;
    m_target.answer(ACCEPTED);
    EXPECT_EQ(program(image(1024)), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_context.ComInfo.Retry, 4U);
    EXPECT_EQ(m_target.frames(6).size(), 6U);
}

TEST_F(ProgrammingExchangeTest, AFrameThatCouldNotBeSentIsSentAgain) {
    hurry();
    m_target.answer(ACCEPTED);
    m_requests.fullWrites = 1;
    m_requests.shortWrites = 1;
    takeFrames(3);
    takeFinalFrame();
    // The target takes the first byte of the second attempt for the one that went missing.
    EXPECT_EQ(program(image(1024)), RESULT_OK);
    EXPECT_EQ(m_requests.shortWrites, 0);
    EXPECT_EQ(m_target.frames()[1].back(), 0x02);
}

TEST_F(ProgrammingExchangeTest, AVerifyStatusThatDoesNotComeSendsTheFinalFrameAgain) {
    hurry();
    const Bytes bytes = image(1024);
    takeBlock();
    m_target.answer(TAKEN);
    takeFinalFrame();
    EXPECT_EQ(program(bytes), RESULT_OK);
    const std::vector<Bytes> frames = m_target.frames();
    ASSERT_EQ(frames.size(), 6U);
    EXPECT_EQ(frames[4], dataFrame(bytes, 3, true));
    EXPECT_EQ(frames[5], dataFrame(bytes, 3, true));
    EXPECT_EQ(m_context.ComInfo.Retry, 1U);
}

TEST_F(ProgrammingExchangeTest, TellsOfAFinalFrameSentAgainInTheDiagnosticLog) {
    hurry();
    Bytes bytes(1024, 0x33);
    bytes[0] = 0x12;
    takeBlock();
    m_target.answer(TAKEN);
    m_target.answer(twice(ACCEPTED));
    const DiagnosticLines lines;
    ASSERT_EQ(program(bytes), RESULT_OK);

    Lines expected{
        "dwStartAddress = 0x00000000",
        "dwEndAddress   = 0x000003FF",
        "Programming@ST1 = 0x06",
        "dwDataLength = 1024",
        "pbData       = 0x00000012",
        "fFraction = FALSE",
        "dwBlockCount = 1",
        "dwRemainByte = 0",
    };
    for (std::uint64_t part = 0; part < 4; ++part) {
        AttemptLines{0, part, 0, bytes[part * 256], part == 3, 6}.appendTo(expected);
        expected.insert(expected.end(), {"dwRet = 0x00000000", "DST1 = 0x06\nDST2 = 0x06"});
    }
    AttemptLines{0, 3, 1, 0x33, true, 5}.appendTo(expected);
    expected.insert(expected.end(), {"DST1=0x06", "Internal Verify DST1=0x06"});
    EXPECT_EQ(DiagnosticLines::all(), expected);
}

TEST_F(ProgrammingExchangeTest, AVerifyThatNeverAnswersEndsAfterTheLastAttempt) {
    hurry();
    takeBlock();
    takeFrames(2);
    EXPECT_EQ(program(image(1024)), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_target.frames().size(), 6U);
}

TEST_F(ProgrammingExchangeTest, AVerifyThatFailedIsFinal) {
    const std::vector<std::pair<Bytes, ResultCode>> cases{
        {targetFrame({0x1B}), RESULT_DATA_FRAME_ABORT},
        {targetFrame({0x06, 0x06}), RESULT_RECEIVE_TIMEOUT},
        {{0x02, 0x01, 0x06, 0xF8, 0x03}, RESULT_SUM_ERROR}};
    for (const auto& [verify, expected] : cases) {
        const std::size_t before = m_target.frames().size();
        takeBlock();
        Bytes both = TAKEN;
        both.insert(both.end(), verify.begin(), verify.end());
        m_target.answer(both);
        EXPECT_EQ(program(image(1024)), expected);
        EXPECT_EQ(m_target.frames().size(), before + 5);
    }
}

TEST_F(ProgrammingExchangeTest, NoMemoryForTheLastBlockCountsMoreThanARefusedCommand) {
    testing::failingAllocation.size = 1024;
    m_target.answer(targetFrame({0x05}));
    EXPECT_EQ(program(image(1500)), RESULT_INIT_FAILED);
    EXPECT_EQ(m_target.frames().size(), 1U) << "the command is sent before";
    m_target.answer(ACCEPTED);
    EXPECT_EQ(program(image(1500)), RESULT_INIT_FAILED);
    EXPECT_EQ(m_target.frames().size(), 2U);
}

} // namespace
} // namespace flashwriter
