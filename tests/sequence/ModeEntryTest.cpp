#include "sequence/ModeEntry.h"

#include "tests/sequence/ExchangeFixture.h"

#include "serial/NSGetTime.h"

#define termios kernel_termios
#include <asm/termbits.h>
#undef termios

namespace flashwriter {
namespace {

using testing::Bytes;
using testing::targetFrame;

constexpr std::uint8_t VOLTAGE = 0x21;

const Bytes ZERO{0x00};
const Bytes BAUD_RATE_0{0x01, 0x03, 0x9A, 0x00, 0x21, 0x42, 0x03};
const Bytes BAUD_RATE_2{0x01, 0x03, 0x9A, 0x02, 0x21, 0x40, 0x03};
const Bytes RESET{0x01, 0x01, 0x00, 0xFF, 0x03};
const Bytes SIGNATURE{0x01, 0x01, 0xC0, 0x3F, 0x03};

class ModeEntryTest : public ExchangeFixture {
protected:
    void answerAll() {
        m_target.answer(ACCEPTED);
        m_target.answer(ACCEPTED);
        Bytes both = ACCEPTED;
        const Bytes data = targetFrame(Bytes(22, 0x30));
        both.insert(both.end(), data.begin(), data.end());
        m_target.answer(both);
    }
    speed_t speed() const {
        termios2 attributes{};
        EXPECT_EQ(::ioctl(m_target.master(), TCGETS2, &attributes), 0);
        return attributes.c_ospeed;
    }
    ResultCode baudRateSet(const Bytes& reply) {
        m_context.TransitionStartTime = NSGetTime::getTimeOfDay_msec();
        m_target.answer(reply);
        return m_entry.comBaudRateSetProc(0, VOLTAGE);
    }

    ModeEntry m_entry{m_link, m_queries};
};

TEST_F(ModeEntryTest, SendsZeroThenBaudRateSetResetAndSignature) {
    answerAll();
    EXPECT_EQ(m_entry.programingMode(0, VOLTAGE, false), RESULT_OK);
    EXPECT_EQ(m_target.frames(), (std::vector<Bytes>{ZERO, BAUD_RATE_0, RESET, SIGNATURE}));
}

TEST_F(ModeEntryTest, ReleasesResetByDtrWhileBreakHoldsTheLine) {
    answerAll();
    ASSERT_EQ(m_entry.programingMode(0, VOLTAGE, false), RESULT_OK);
    const std::vector<std::pair<unsigned long, std::int64_t>> expected{
        {TIOCMGET, 0},
        {TIOCMSET, TIOCM_RTS | TIOCM_DTR},
        {TIOCSBRK, 0},
        {TIOCMSET, TIOCM_RTS},
        {TIOCCBRK, 0}};
    EXPECT_EQ(m_requests.made, expected);
}

TEST_F(ModeEntryTest, InvertedSwapsTheLevelsAndNothingElse) {
    answerAll();
    ASSERT_EQ(m_entry.programingMode(0, VOLTAGE, true), RESULT_OK);
    const std::vector<std::pair<unsigned long, std::int64_t>> expected{
        {TIOCMSET, 0},
        {TIOCSBRK, 0},
        {TIOCMGET, 0},
        {TIOCMSET, TIOCM_RTS | TIOCM_DTR},
        {TIOCCBRK, 0}};
    EXPECT_EQ(m_requests.made, expected);
    EXPECT_EQ(m_target.frames(), (std::vector<Bytes>{ZERO, BAUD_RATE_0, RESET, SIGNATURE}));
}

TEST_F(ModeEntryTest, GoesOnWhenThePortHasNoLines) {
    m_requests.plan = {{TIOCMGET, -1}, {TIOCMSET, -1}, {TIOCSBRK, -1}, {TIOCCBRK, -1}};
    answerAll();
    EXPECT_EQ(m_entry.programingMode(0, VOLTAGE, false), RESULT_OK);
}

// What a target said before it was held in reset is no answer to anything.
TEST_F(ModeEntryTest, ForgetsWhatCameBefore) {
    for (const Bytes& stale : {ACCEPTED, targetFrame({0x05}), Bytes{0x02, 0x16}, Bytes{0x00}}) {
        const std::size_t before = m_target.frames().size();
        answerAll();
        m_port.setReadData(stale.data(), stale.size());
        EXPECT_EQ(m_entry.programingMode(0, VOLTAGE, false), RESULT_OK);
        std::vector<Bytes> frames = m_target.frames();
        frames.erase(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(before));
        EXPECT_EQ(frames, (std::vector<Bytes>{ZERO, BAUD_RATE_0, RESET, SIGNATURE}));
        EXPECT_EQ(m_port.GetReceiveDataLength(), 0U);
    }
}

TEST_F(ModeEntryTest, RefusesAnUnknownSpeedBeforeTouchingALine) {
    EXPECT_EQ(m_entry.programingMode(4, VOLTAGE, false), RESULT_PARAMETER_ERROR);
    EXPECT_TRUE(m_requests.made.empty());
    EXPECT_TRUE(m_target.frames().empty());
    EXPECT_EQ(m_context.TransitionStartTime, 0U);
}

TEST_F(ModeEntryTest, SwitchesThePortToTheSpeedOfTheIndex) {
    for (const auto& [index, rate] : std::vector<std::pair<std::uint8_t, speed_t>>{
             {std::uint8_t{1}, 250000}, {std::uint8_t{2}, 500000}, {std::uint8_t{3}, 1000000}}) {
        answerAll();
        EXPECT_EQ(m_entry.programingMode(index, VOLTAGE, false), RESULT_OK);
        EXPECT_EQ(speed(), rate);
    }
}

TEST_F(ModeEntryTest, IndexZeroNeverChangesTheSpeed) {
    m_requests.plan[TCGETS2] = -1; // a change of speed would fail
    answerAll();
    EXPECT_EQ(m_entry.programingMode(0, VOLTAGE, false), RESULT_OK);
    m_target.answer(ACCEPTED);
    EXPECT_EQ(m_entry.programingMode(2, VOLTAGE, false), RESULT_BAUD_RATE_CHANGE_FAILED);
    EXPECT_EQ(m_target.frames().back(), BAUD_RATE_2) << "nothing is sent at a speed in doubt";
}

TEST_F(ModeEntryTest, ReturnsTheFirstFailureOfAnExchange) {
    m_target.answer(targetFrame({0x07}));
    EXPECT_EQ(m_entry.programingMode(0, VOLTAGE, false), RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(m_context.ComInfo.Command, 0x9A);
    m_target.answer(ACCEPTED);
    m_target.answer(targetFrame({0x07}));
    EXPECT_EQ(m_entry.programingMode(0, VOLTAGE, false), RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(m_context.ComInfo.Command, 0x00);
    m_target.answer(ACCEPTED);
    m_target.answer(ACCEPTED);
    m_target.answer(targetFrame({0x07}));
    EXPECT_EQ(m_entry.programingMode(0, VOLTAGE, false), RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(m_context.ComInfo.Command, 0xC0);
}

TEST_F(ModeEntryTest, AZeroByteThatCannotBeSentEndsTheEntry) {
    m_requests.shortWrites = 1;
    EXPECT_EQ(m_entry.programingMode(0, VOLTAGE, false), RESULT_SEND_FAILED);
    EXPECT_TRUE(m_target.frames().empty());
}

TEST_F(ModeEntryTest, BaudRateSetTakesAStatusWithItsDataToo) {
    EXPECT_EQ(baudRateSet(targetFrame({0x06, 0x12, 0x34})), RESULT_OK);
    EXPECT_EQ(m_context.BaudRateStat.D01, 0x12);
    EXPECT_EQ(m_context.BaudRateStat.D02, 0x34);
}

TEST_F(ModeEntryTest, BaudRateSetTakesNoOtherSize) {
    EXPECT_EQ(baudRateSet(targetFrame({0x06, 0x12})), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(baudRateSet(targetFrame({0x06, 0x12, 0x34, 0x56})), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_target.frames().size(), 2U);
}

TEST_F(ModeEntryTest, BaudRateSetThatIsRefused) {
    EXPECT_EQ(baudRateSet(targetFrame({0x07, 0x12, 0x34})), RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(m_context.ComInfo.ST1, 0x07);
    EXPECT_EQ(baudRateSet(targetFrame({0x05})), RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(baudRateSet({0x02, 0x03, 0x06, 0x12, 0x34, 0xB0, 0x03}), RESULT_SUM_ERROR);
}

TEST_F(ModeEntryTest, AnAnswerToALaterAttemptIsTooLate) {
    m_context.TransitionStartTime = NSGetTime::getTimeOfDay_msec();
    m_target.beSilent();
    m_target.answer(ACCEPTED);
    EXPECT_EQ(m_entry.comBaudRateSetProc(0, VOLTAGE), RESULT_MODE_ENTRY_TIMEOUT);
    EXPECT_EQ(m_context.ComInfo.Retry, 1U);
    EXPECT_GT(m_context.TransitionEndTime - m_context.TransitionStartTime, 100U);
    EXPECT_EQ(m_port.GetReceiveDataLength(), ACCEPTED.size()) << "the answer is not even read";
}

TEST_F(ModeEntryTest, ATargetThatNeverAnswersIsAskedAsOftenAsAllowed) {
    m_context.TransitionStartTime = NSGetTime::getTimeOfDay_msec();
    EXPECT_EQ(m_entry.comBaudRateSetProc(0, VOLTAGE), RESULT_MODE_ENTRY_TIMEOUT);
    EXPECT_EQ(m_context.ComInfo.Command, 0x9A);
    EXPECT_EQ(m_context.ComInfo.Retry, 4U);
    EXPECT_EQ(m_target.frames(5), std::vector<Bytes>(5, BAUD_RATE_0));
}

TEST_F(ModeEntryTest, WithoutAttemptsTheOldTimesDecide) {
    m_context.ComRetryMax = 0;
    m_context.TransitionStartTime = 1000;
    m_context.TransitionEndTime = 1100;
    EXPECT_EQ(m_entry.comBaudRateSetProc(0, VOLTAGE), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_context.TransitionEndTime, 1100U);
    m_context.TransitionEndTime = 1101;
    EXPECT_EQ(m_entry.comBaudRateSetProc(0, VOLTAGE), RESULT_MODE_ENTRY_TIMEOUT);
    EXPECT_TRUE(m_target.frames().empty());
}

TEST_F(ModeEntryTest, TheTimeOfASendThatFailedIsKept) {
    m_context.TransitionStartTime = NSGetTime::getTimeOfDay_msec();
    m_requests.shortWrites = 1;
    EXPECT_EQ(m_entry.comBaudRateSetProc(0, VOLTAGE), RESULT_SEND_FAILED);
    EXPECT_GE(m_context.TransitionEndTime, m_context.TransitionStartTime);
}

TEST_F(ModeEntryTest, BaudRateSetRefusesAnUnknownSpeed) {
    EXPECT_EQ(m_entry.comBaudRateSetProc(4, VOLTAGE), RESULT_PARAMETER_ERROR);
    EXPECT_TRUE(m_target.frames().empty());
}

TEST_F(ModeEntryTest, ResetIsOneFrameAndItsStatus) {
    m_target.answer(ACCEPTED);
    EXPECT_EQ(m_entry.comResetProc(), RESULT_OK);
    EXPECT_EQ(m_target.frames(), std::vector<Bytes>{RESET});
}

} // namespace
} // namespace flashwriter
