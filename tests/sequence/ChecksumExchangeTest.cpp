#include "sequence/ChecksumExchange.h"

#include "tests/sequence/ExchangeFixture.h"

namespace flashwriter {
namespace {

using testing::Bytes;
using testing::targetFrame;

class ChecksumExchangeTest : public ExchangeFixture {
protected:
    ResultCode ask(const Bytes& status, const Bytes& data = {}) {
        Bytes both = status;
        both.insert(both.end(), data.begin(), data.end());
        m_target.answer(both);
        return m_checksum.comChecksum(0, 0x3FF, m_ck1, m_ck2, true);
    }

    ChecksumExchange m_checksum{m_link};
    std::uint8_t m_ck1 = 0xAA;
    std::uint8_t m_ck2 = 0xBB;
};

TEST_F(ChecksumExchangeTest, AsksForTheRangeAndReadsTwoBytes) {
    EXPECT_EQ(ask(ACCEPTED, targetFrame({0x34, 0x12})), RESULT_OK);
    EXPECT_EQ(m_ck1, 0x34);
    EXPECT_EQ(m_ck2, 0x12);
    EXPECT_EQ(m_target.frames(), (std::vector<Bytes>{{0x01, 0x07, 0xB0, 0x00, 0x00, 0x00, 0xFF,
                                                      0x03, 0x00, 0x47, 0x03}}));
}

TEST_F(ChecksumExchangeTest, ARefusalWritesNothing) {
    EXPECT_EQ(ask(targetFrame({0x05})), RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(m_context.ComInfo.Command, 0xB0);
    EXPECT_EQ(m_context.ComInfo.ST1, 0x05);
    EXPECT_EQ(m_ck1, 0xAA);
    EXPECT_EQ(m_ck2, 0xBB);
}

TEST_F(ChecksumExchangeTest, DataThatDoesNotComeIsNotAskedForAgain) {
    EXPECT_EQ(ask(ACCEPTED), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_target.frames().size(), 1U);
}

// 256 blocks may take 246 ms, a single one 100.
TEST_F(ChecksumExchangeTest, WaitsForTheDataAsLongAsTheBlocksOfTheRangeAllow) {
    m_target.answer({ACCEPTED, {}, targetFrame({0x34, 0x12}), std::chrono::milliseconds(150)});
    EXPECT_EQ(m_checksum.comChecksum(0, 0x3FFFF, m_ck1, m_ck2, true), RESULT_OK);
    EXPECT_EQ(m_ck1, 0x34);
    EXPECT_EQ(m_ck2, 0x12);
}

TEST_F(ChecksumExchangeTest, DataOfAnotherSizeIsNoReply) {
    EXPECT_EQ(ask(ACCEPTED, targetFrame({0x34})), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_ck1, 0xAA);
}

TEST_F(ChecksumExchangeTest, DamagedFramesWriteNothing) {
    EXPECT_EQ(ask(ACCEPTED, {0x02, 0x02, 0x34, 0x12, 0xB9, 0x03}), RESULT_SUM_ERROR);
    EXPECT_EQ(ask({0x02, 0x01, 0x06, 0xF8, 0x03}), RESULT_SUM_ERROR);
    EXPECT_EQ(m_ck1, 0xAA);
    EXPECT_EQ(m_ck2, 0xBB);
}

TEST_F(ChecksumExchangeTest, ASilenceIsTriedAgain) {
    hurry();
    m_target.beSilent();
    EXPECT_EQ(ask(ACCEPTED, targetFrame({0x34, 0x12})), RESULT_OK);
    EXPECT_EQ(m_target.frames().size(), 2U);
}

TEST(ChecksumBlocks, CountsTheBlocksOfAnInclusiveRange) {
    EXPECT_EQ(ChecksumExchange::blocksBetween(0, 0x3FF), 1U);
    EXPECT_EQ(ChecksumExchange::blocksBetween(0, 0x7FF), 2U);
    EXPECT_EQ(ChecksumExchange::blocksBetween(0, 0x400), 1U);
    EXPECT_EQ(ChecksumExchange::blocksBetween(0x400, 0x401), 1U);
    EXPECT_EQ(ChecksumExchange::blocksBetween(0, 0), 0U);
}

} // namespace
} // namespace flashwriter
