#include "sequence/BlockExchanges.h"

#include "tests/sequence/ExchangeFixture.h"

namespace flashwriter {
namespace {

using testing::Bytes;
using testing::targetFrame;

class BlockExchangesTest : public ExchangeFixture {
protected:
    BlockExchanges m_blocks{m_link};
};

TEST_F(BlockExchangesTest, BlankCheckSendsTheRangeOfTheBlock) {
    m_target.answer(ACCEPTED);
    EXPECT_EQ(m_blocks.comBlockBlankCheckProc(0x000400, true), RESULT_OK);
    EXPECT_EQ(m_target.frames(), (std::vector<Bytes>{{0x01, 0x08, 0x32, 0x00, 0x04, 0x00, 0xFF,
                                                      0x07, 0x00, 0x00, 0xBC, 0x03}}));
}

TEST_F(BlockExchangesTest, BlankCheckTellsABlockThatIsNotBlank) {
    m_target.answer(targetFrame({0x1B}));
    EXPECT_EQ(m_blocks.comBlockBlankCheckProc(0, true), RESULT_NOT_BLANK);
    EXPECT_EQ(m_context.ComInfo.Command, 0x32);
    EXPECT_EQ(m_context.ComInfo.ST1, 0x1B);
}

TEST_F(BlockExchangesTest, BlankCheckThatIsRefused) {
    m_target.answer(targetFrame({0x04}));
    EXPECT_EQ(m_blocks.comBlockBlankCheckProc(0, true), RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(m_context.ComInfo.ST1, 0x04);
}

TEST_F(BlockExchangesTest, BlankCheckThatTimesOutIsNotTriedAgain) {
    EXPECT_EQ(m_blocks.comBlockBlankCheckProc(0, true), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_target.frames().size(), 1U);
    EXPECT_EQ(m_context.ComInfo.Retry, 0U);
}

TEST_F(BlockExchangesTest, BlankCheckTakesNoReplyOfAnotherSize) {
    m_target.answer(targetFrame({0x06, 0x06}));
    EXPECT_EQ(m_blocks.comBlockBlankCheckProc(0, true), RESULT_RECEIVE_TIMEOUT);
}

TEST_F(BlockExchangesTest, BlankCheckOfADamagedReply) {
    m_target.answer({0x02, 0x01, 0x1B, 0xE5, 0x03});
    EXPECT_EQ(m_blocks.comBlockBlankCheckProc(0, true), RESULT_SUM_ERROR);
    EXPECT_EQ(m_context.ComInfo.ST1, 0);
}

TEST_F(BlockExchangesTest, BlankCheckWithoutAttemptsSendsNothing) {
    m_context.ComRetryMax = 0;
    EXPECT_EQ(m_blocks.comBlockBlankCheckProc(0, true), RESULT_RECEIVE_TIMEOUT);
    EXPECT_TRUE(m_target.frames().empty());
}

TEST_F(BlockExchangesTest, BlankCheckThatCannotBeSent) {
    m_requests.shortWrites = 1;
    EXPECT_EQ(m_blocks.comBlockBlankCheckProc(0, true), RESULT_SEND_FAILED);
}

TEST_F(BlockExchangesTest, EraseSendsTheStartOfTheBlock) {
    m_target.answer(ACCEPTED);
    EXPECT_EQ(m_blocks.comBlockEraseProc(0x001C00, true), RESULT_OK);
    EXPECT_EQ(m_target.frames(),
              (std::vector<Bytes>{{0x01, 0x04, 0x22, 0x00, 0x1C, 0x00, 0xBE, 0x03}}));
}

TEST_F(BlockExchangesTest, EraseIsTriedAgainAfterASilence) {
    hurry();
    m_target.beSilent();
    m_target.answer(ACCEPTED);
    EXPECT_EQ(m_blocks.comBlockEraseProc(0x000400, true), RESULT_OK);
    EXPECT_EQ(m_target.frames().size(), 2U);
}

TEST_F(BlockExchangesTest, EraseThatIsRefused) {
    m_target.answer(targetFrame({0x1A}));
    EXPECT_EQ(m_blocks.comBlockEraseProc(0, false), RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(m_context.ComInfo.Command, 0x22);
    EXPECT_EQ(m_context.ComInfo.ST1, 0x1A);
}

} // namespace
} // namespace flashwriter
