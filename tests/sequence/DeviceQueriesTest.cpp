#include "tests/sequence/ExchangeFixture.h"

#include <algorithm>
#include <cstring>

namespace flashwriter {
namespace {

using testing::Bytes;
using testing::targetFrame;

const Bytes SIGNATURE_DATA{0x10, 0x00, 0x06,                                    // device code
                           'D',  'E',  'V',  'I', 'C', 'E', '0', '1', '2', '3', // device name
                           0xFF, 0xFF, 0x03,                                    // code flash end
                           0xFF, 0x1F, 0x0F,                                    // data flash end
                           0x01, 0x02, 0x03};                                   // firmware version

Bytes joined(const Bytes& first, const Bytes& second) {
    Bytes both = first;
    both.insert(both.end(), second.begin(), second.end());
    return both;
}

template <std::size_t N>
Bytes bytesOf(const std::uint8_t (&field)[N]) {
    return Bytes(std::begin(field), std::end(field));
}

class DeviceQueriesTest : public ExchangeFixture {};

TEST_F(DeviceQueriesTest, TheSignatureFillsTheContext) {
    m_target.answer(joined(ACCEPTED, targetFrame(SIGNATURE_DATA)));
    EXPECT_EQ(m_queries.comSiliconSignatureProc(), RESULT_OK);
    const _SILICONSIGNATURE& signature = m_context.SiliconSignature;
    EXPECT_EQ(bytesOf(signature.DevCode), (Bytes{0x10, 0x00, 0x06}));
    EXPECT_EQ(std::memcmp(signature.DevName, "DEVICE0123", 11), 0);
    EXPECT_EQ(bytesOf(signature.CodeEndAddress), (Bytes{0xFF, 0xFF, 0x03}));
    EXPECT_EQ(bytesOf(signature.DataEndAddress), (Bytes{0xFF, 0x1F, 0x0F}));
    EXPECT_EQ(bytesOf(signature.FVer), (Bytes{1, 2, 3}));
    EXPECT_EQ(m_target.frames(), (std::vector<Bytes>{{0x01, 0x01, 0xC0, 0x3F, 0x03}}));
}

TEST_F(DeviceQueriesTest, TheNamesLastPositionIsNotWritten) {
    m_context.SiliconSignature.DevName[10] = 0x7E;
    m_target.answer(joined(ACCEPTED, targetFrame(SIGNATURE_DATA)));
    EXPECT_EQ(m_queries.comSiliconSignatureProc(), RESULT_OK);
    EXPECT_EQ(m_context.SiliconSignature.DevName[10], 0x7E);
}

TEST_F(DeviceQueriesTest, TheTwoFramesOfAnAnswerMayComeApart) {
    m_target.answer(ACCEPTED);
    const Bytes data = targetFrame(SIGNATURE_DATA);
    std::thread late([&] {
        m_target.frames(1);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_EQ(::write(m_target.master(), data.data(), data.size()),
                  static_cast<ssize_t>(data.size()));
    });
    EXPECT_EQ(m_queries.comSiliconSignatureProc(), RESULT_OK);
    late.join();
}

TEST_F(DeviceQueriesTest, ADataFrameThatDoesNotComeIsNotAskedForAgain) {
    m_target.answer(ACCEPTED);
    EXPECT_EQ(m_queries.comSiliconSignatureProc(), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_target.frames().size(), 1U);
}

TEST_F(DeviceQueriesTest, ADataFrameOfAnotherSizeIsNoReply) {
    Bytes shorter = SIGNATURE_DATA;
    shorter.pop_back();
    m_target.answer(joined(ACCEPTED, targetFrame(shorter)));
    EXPECT_EQ(m_queries.comSiliconSignatureProc(), RESULT_RECEIVE_TIMEOUT);
}

TEST_F(DeviceQueriesTest, ADamagedDataFrameLeavesTheContextAsItWas) {
    std::ranges::copy(Bytes{'b', 'e', 'f', 'o', 'r', 'e'}, m_context.SiliconSignature.DevName);
    Bytes damaged = targetFrame(SIGNATURE_DATA);
    damaged[24] ^= 0x01;
    m_target.answer(joined(ACCEPTED, damaged));
    EXPECT_EQ(m_queries.comSiliconSignatureProc(), RESULT_SUM_ERROR);
    EXPECT_STREQ(reinterpret_cast<const char*>(m_context.SiliconSignature.DevName), "before");
}

TEST_F(DeviceQueriesTest, ARefusedSignature) {
    m_target.answer(targetFrame({0x04}));
    EXPECT_EQ(m_queries.comSiliconSignatureProc(), RESULT_COMMAND_FRAME_ABORT);
    EXPECT_EQ(m_context.ComInfo.Command, 0xC0);
}

TEST_F(DeviceQueriesTest, SecurityGetKeepsSixOfItsEightBytes) {
    m_target.answer(joined(ACCEPTED, targetFrame({1, 2, 3, 4, 5, 6, 7, 8})));
    EXPECT_EQ(m_queries.comSecrityGetProc(), RESULT_OK);
    const _SECURITYGETINFO& info = m_context.SecurityGetInfo;
    EXPECT_EQ((Bytes{info.Flg, info.Bot, info.Ssl, info.Ssh, info.Sel, info.Seh}),
              (Bytes{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(m_target.frames(), (std::vector<Bytes>{{0x01, 0x01, 0xA1, 0x5E, 0x03}}));
}

TEST_F(DeviceQueriesTest, SecurityGetFailsAsTheSignatureDoes) {
    m_target.answer(targetFrame({0x04}));
    EXPECT_EQ(m_queries.comSecrityGetProc(), RESULT_COMMAND_FRAME_ABORT);
    m_target.answer(joined(ACCEPTED, targetFrame({1, 2, 3, 4, 5, 6, 7})));
    EXPECT_EQ(m_queries.comSecrityGetProc(), RESULT_RECEIVE_TIMEOUT);
    m_target.answer(ACCEPTED);
    EXPECT_EQ(m_queries.comSecrityGetProc(), RESULT_RECEIVE_TIMEOUT);
    EXPECT_EQ(m_context.SecurityGetInfo.Flg, 0);
    EXPECT_EQ(m_context.ComInfo.Command, 0xA1);
}

TEST(ThreeByteValues, SplitGivesHighMidLow) {
    std::uint8_t high = 0;
    std::uint8_t mid = 0;
    std::uint8_t low = 0;
    EXPECT_EQ(DeviceQueries::splitAddress(0x0107FF, high, mid, low), RESULT_OK);
    EXPECT_EQ(high, 0x01);
    EXPECT_EQ(mid, 0x07);
    EXPECT_EQ(low, 0xFF);
}

TEST(ThreeByteValues, MakeTakesTheLowByteFirst) {
    EXPECT_EQ(DeviceQueries::makeAddress(0x01, 0x07, 0xFF), 0xFF0701U);
    EXPECT_EQ(DeviceQueries::makeAddress(0xFF, 0xFF, 0xFF), 0xFFFFFFU);
}

TEST(ThreeByteValues, AFirmwareVersionIsANumberOfHundredths) {
    EXPECT_FLOAT_EQ(DeviceQueries::makeFirmWareVersion(0, 0, 0), 0.0F);
    EXPECT_FLOAT_EQ(DeviceQueries::makeFirmWareVersion(1, 2, 3), 1.23F);
    EXPECT_FLOAT_EQ(DeviceQueries::makeFirmWareVersion(0, 0, 5), 0.05F);
    EXPECT_FLOAT_EQ(DeviceQueries::makeFirmWareVersion(255, 255, 255), 283.05F);
}

} // namespace
} // namespace flashwriter
