#include "tests/sequence/ExchangeFixture.h"

#include "serial/NSGetTime.h"

#include <cstring>

namespace flashwriter {
namespace {

using testing::Bytes;
using testing::eventually;
using testing::targetFrame;

class CommandLinkTest : public ExchangeFixture {
protected:
    ResultCode reset() {
        m_link.initCommandInfo(COM_RESET);
        return m_link.exchange(
            [this](std::uint64_t& length) { return m_cmd.MakeResetCommand(length); }, 100,
            &NSCommandProcessor::CheckResetStatus);
    }
};

const Bytes RESET_FRAME{0x01, 0x01, 0x00, 0xFF, 0x03};

TEST_F(CommandLinkTest, BeginningAnExchangeLeavesTheRestOfTheContextAlone) {
    m_context.ComInfo = {0x40, 1, 2, 3, 4};
    m_context.BaudRate = 2;
    m_context.TransitionStartTime = 7;
    const _CONTEXTINFO before = m_context;
    m_link.initCommandInfo(0x9A);
    EXPECT_EQ(m_context.ComInfo.Command, 0x9A);
    EXPECT_EQ(m_context.ComInfo.ST1, 0);
    EXPECT_EQ(m_context.ComInfo.DST1, 0);
    EXPECT_EQ(m_context.ComInfo.DST2, 0);
    EXPECT_EQ(m_context.ComInfo.Retry, 0U);
    m_context.ComInfo = before.ComInfo;
    EXPECT_EQ(std::memcmp(&m_context, &before, sizeof before), 0);
}

TEST_F(CommandLinkTest, AWaitLastsUntilMoreThanItsTimeHasPassed) {
    for (const std::uint64_t milliseconds : {0U, 1U, 5U}) {
        const std::uint64_t start = NSGetTime::getTimeOfDay_msec();
        CommandLink::wait(milliseconds);
        EXPECT_GT(NSGetTime::getTimeOfDay_msec() - start, milliseconds);
    }
}

TEST_F(CommandLinkTest, AcceptedAtTheFirstAttempt) {
    m_target.answer(ACCEPTED);
    EXPECT_EQ(reset(), RESULT_OK);
    EXPECT_EQ(m_context.ComInfo.Retry, 0U);
    EXPECT_EQ(m_context.ComInfo.ST1, 0x06);
    EXPECT_EQ(m_target.frames(), std::vector<Bytes>{RESET_FRAME});
}

TEST_F(CommandLinkTest, ASilenceIsTriedAgain) {
    hurry();
    m_target.beSilent();
    m_target.answer(ACCEPTED);
    EXPECT_EQ(reset(), RESULT_OK);
    EXPECT_EQ(m_context.ComInfo.Retry, 1U);
    EXPECT_EQ(m_target.frames(), (std::vector<Bytes>{RESET_FRAME, RESET_FRAME}));
}

TEST_F(CommandLinkTest, GivesUpAfterTheLastAttempt) {
    m_context.RetryWaitTime = 1;
    EXPECT_EQ(reset(), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_context.ComInfo.Retry, 4U);
    EXPECT_EQ(m_target.frames(5), std::vector<Bytes>(5, RESET_FRAME));
}

TEST_F(CommandLinkTest, AReplyThatBeginsAfterTheLastTimeOutIsLeftUnread) {
    m_context.ComRetryMax = 1;
    m_context.RetryWaitTime = 2000;
    m_target.answer({ACCEPTED, std::chrono::milliseconds(400)});
    EXPECT_EQ(reset(), RESULT_RECEIVE_TIMEOUT) << "no frame had begun when the time was up";
    EXPECT_EQ(m_port.GetReceiveDataLength(), ACCEPTED.size());
}

TEST_F(CommandLinkTest, AReplyThatHadBegunInTimeIsReadAllTheSame) {
    m_context.ComRetryMax = 1;
    m_context.RetryWaitTime = 1;
    const Bytes head(ACCEPTED.begin(), ACCEPTED.begin() + 3);
    const Bytes tail(ACCEPTED.begin() + 3, ACCEPTED.end());
    m_target.answer(head);
    m_link.initCommandInfo(COM_RESET);
    std::uint64_t frameLength = 0;
    const auto build = [this](std::uint64_t& length) { return m_cmd.MakeResetCommand(length); };
    EXPECT_EQ(m_link.sendCommand(build, 50, frameLength), RESULT_OK);
    EXPECT_EQ(frameLength, 5U);
    m_port.setReadData(tail.data(), tail.size());
    EXPECT_EQ(m_link.receiveStatus(frameLength, &NSCommandProcessor::CheckStatus), RESULT_OK);
}

TEST_F(CommandLinkTest, WithoutAttemptsNothingIsSentAndNothingIsRead) {
    m_context.ComRetryMax = 0;
    EXPECT_EQ(reset(), RESULT_RECEIVE_TIMEOUT);
    EXPECT_TRUE(m_target.frames().empty());
}

TEST_F(CommandLinkTest, AReplyOfAnotherSizeIsFinal) {
    for (const Bytes& data : {Bytes{0x06, 0x06}, Bytes{}, Bytes(22, 0x11)}) {
        const std::size_t before = m_target.frames().size();
        m_target.answer(targetFrame(data));
        EXPECT_EQ(reset(), RESULT_RECEIVE_TIMEOUT) << data.size();
        EXPECT_EQ(m_target.frames().size(), before + 1);
    }
}

TEST_F(CommandLinkTest, ADamagedReplyIsFinal) {
    m_target.answer({0x02, 0x01, 0x06, 0xF8, 0x03});
    EXPECT_EQ(reset(), RESULT_SUM_ERROR);
    m_target.answer({0x02, 0x01, 0x06, 0xF9, 0x17});
    EXPECT_EQ(reset(), RESULT_FRAME_FORMAT_ERROR);
    EXPECT_EQ(m_target.frames().size(), 2U);
}

TEST_F(CommandLinkTest, ARefusalIsFinal) {
    m_target.answer(targetFrame({0x05}));
    EXPECT_EQ(reset(), RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(m_context.ComInfo.ST1, 0x05);
    EXPECT_EQ(m_target.frames().size(), 1U);
}

TEST_F(CommandLinkTest, AReplyThatBeginsWithAnotherByteTimesOutInsteadOfFailingTheCheck) {
    hurry();
    m_target.answer({0x03, 0x01, 0x06, 0xF9, 0x03});
    EXPECT_EQ(reset(), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_target.frames(2).size(), 2U);
}

TEST_F(CommandLinkTest, AShortWriteIsFinal) {
    m_requests.shortWrites = 1;
    EXPECT_EQ(reset(), RESULT_SEND_FAILED);
    EXPECT_EQ(m_context.ComInfo.Retry, 0U);
    EXPECT_TRUE(m_target.frames().empty());
}

TEST_F(CommandLinkTest, AFrameThatCannotBeBuiltIsFinal) {
    std::uint64_t frameLength = 99;
    const auto build = [this](std::uint64_t& length) {
        return m_cmd.MakeBaudRateCommand(4, 0x21, length);
    };
    EXPECT_EQ(m_link.sendCommand(build, 100, frameLength), RESULT_PARAMETER_ERROR);
    EXPECT_EQ(frameLength, 0U);
    EXPECT_TRUE(m_target.frames().empty());
}

TEST_F(CommandLinkTest, AnIncompleteFrameTellsItsLengthAndTimesOut) {
    const Bytes head{0x02, 0x16, 0x10};
    m_port.setReadData(head.data(), head.size());
    std::uint64_t frameLength = 0;
    EXPECT_EQ(m_link.waitStatusFrames(frameLength, 20), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(frameLength, 26U);
}

TEST_F(CommandLinkTest, AFrameOfNoDataIsFourBytesLong) {
    const Bytes frame{0x02, 0x00, 0x00, 0x03};
    m_port.setReadData(frame.data(), frame.size());
    std::uint64_t frameLength = 0;
    EXPECT_EQ(m_link.waitStatusFrames(frameLength, 1000), RESULT_OK);
    EXPECT_EQ(frameLength, 4U);
}

TEST_F(CommandLinkTest, AFrameStaysInTheBufferUntilItIsTaken) {
    m_port.setReadData(ACCEPTED.data(), ACCEPTED.size());
    std::uint64_t frameLength = 0;
    EXPECT_EQ(m_link.waitStatusFrames(frameLength, 1000), RESULT_OK);
    EXPECT_EQ(m_port.GetReceiveDataLength(), ACCEPTED.size());
    EXPECT_EQ(m_link.receive(frameLength), ACCEPTED.size());
    EXPECT_EQ(m_port.GetReceiveDataLength(), 0U);
}

} // namespace
} // namespace flashwriter
