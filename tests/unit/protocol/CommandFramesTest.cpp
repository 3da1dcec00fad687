// Command frames against bytes worked out by hand.
#include "FrameSupport.h"

namespace flashwriter {
namespace {

using CommandFrames = Codec;

TEST_F(CommandFrames, Reset) {
    EXPECT_EQ(codec.MakeResetCommand(length), RESULT_OK);
    expectSent({0x01, 0x01, 0x00, 0xFF, 0x03});
}

TEST_F(CommandFrames, SecurityGet) {
    EXPECT_EQ(codec.MakeSecurityGetCommand(length), RESULT_OK);
    expectSent({0x01, 0x01, 0xA1, 0x5E, 0x03});
}

TEST_F(CommandFrames, SiliconSignature) {
    EXPECT_EQ(codec.MakeSiliconSignatureCommand(length), RESULT_OK);
    expectSent({0x01, 0x01, 0xC0, 0x3F, 0x03});
}

TEST_F(CommandFrames, BaudRateSet) {
    EXPECT_EQ(codec.MakeBaudRateCommand(2, 0x21, length), RESULT_OK);
    expectSent({0x01, 0x03, 0x9A, 0x02, 0x21, 0x40, 0x03});
}

TEST_F(CommandFrames, BaudRateSetTakesEverySpeedIndex) {
    // 0x03 + 0x9A + 0xFF leaves 0x9C, and the index comes on top.
    const Bytes sums{0x64, 0x63, 0x62, 0x61};
    for (std::uint8_t index = 0; index < 4; ++index) {
        EXPECT_EQ(codec.MakeBaudRateCommand(index, 0xFF, length), RESULT_OK);
        expectSent({0x01, 0x03, 0x9A, index, 0xFF, sums[index], 0x03});
    }
}

TEST_F(CommandFrames, BaudRateSetRefusesAHigherIndexBeforeAnythingIsWritten) {
    for (const std::uint8_t index : Bytes{4, 5, 0x80, 0xFF}) {
        std::fill_n(codec.GetCommandFrames(), 260, std::uint8_t{0xEE});
        length = 0xEEEE;
        EXPECT_EQ(codec.MakeBaudRateCommand(index, 0x21, length), RESULT_PARAMETER_ERROR);
        expectSent({});
    }
}

TEST_F(CommandFrames, BlockErase) {
    EXPECT_EQ(codec.MakeBlockEraseCommand(0x00, 0x1C, 0x00, length), RESULT_OK);
    expectSent({0x01, 0x04, 0x22, 0x00, 0x1C, 0x00, 0xBE, 0x03});
    EXPECT_EQ(codec.MakeBlockEraseCommand(0x01, 0x02, 0x04, length), RESULT_OK);
    expectSent({0x01, 0x04, 0x22, 0x01, 0x02, 0x04, 0xD3, 0x03});
}

TEST_F(CommandFrames, BlockBlankCheck) {
    EXPECT_EQ(codec.MakeBlockBlankCheckCommand(0x00, 0x04, 0x00, 0xFF, 0x07, 0x00, 0x00, length),
              RESULT_OK);
    expectSent({0x01, 0x08, 0x32, 0x00, 0x04, 0x00, 0xFF, 0x07, 0x00, 0x00, 0xBC, 0x03});
}

TEST_F(CommandFrames, BlockBlankCheckKeepsTheOrderOfItsParameters) {
    EXPECT_EQ(codec.MakeBlockBlankCheckCommand(0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, length),
              RESULT_OK);
    expectSent({0x01, 0x08, 0x32, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0xAA, 0x03});
}

TEST_F(CommandFrames, AddressRange) {
    EXPECT_EQ(codec.makeAddressRangeCommand(0x13, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, length),
              RESULT_OK);
    expectSent({0x01, 0x07, 0x13, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0xD1, 0x03});
}

TEST_F(CommandFrames, Programming) {
    EXPECT_EQ(codec.MakeProgrammingCommand(0x01, 0x02, 0x03, 0x04, 0x05, 0x06, length), RESULT_OK);
    expectSent({0x01, 0x07, 0x40, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0xA4, 0x03});
}

TEST_F(CommandFrames, Checksum) {
    EXPECT_EQ(codec.MakeChecksumCommand(0x01, 0x02, 0x03, 0x04, 0x05, 0x06, length), RESULT_OK);
    expectSent({0x01, 0x07, 0xB0, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x34, 0x03});
}

TEST_F(CommandFrames, SumWrapsOverLargeBytes) {
    // 7 + 0xB0 + 6 * 0xFF = 0x6B1
    EXPECT_EQ(codec.MakeChecksumCommand(0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, length), RESULT_OK);
    expectSent({0x01, 0x07, 0xB0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x4F, 0x03});
}

TEST_F(CommandFrames, AShorterFrameLeavesNothingOfALongerOne) {
    ASSERT_EQ(codec.MakeProgrammingCommand(0x01, 0x02, 0x03, 0x04, 0x05, 0x06, length), RESULT_OK);
    ASSERT_EQ(codec.MakeResetCommand(length), RESULT_OK);
    expectSent({0x01, 0x01, 0x00, 0xFF, 0x03});
}

TEST_F(CommandFrames, BuildingLeavesTheReceiveBufferAlone) {
    receive({0x02, 0x01, 0x06, 0xF9, 0x03});
    ASSERT_EQ(codec.MakeResetCommand(length), RESULT_OK);
    std::uint8_t ST1 = 0xEE;
    EXPECT_EQ(codec.CheckStatus(ST1), RESULT_OK);
    EXPECT_EQ(ST1, 0x06);
}

} // namespace
} // namespace flashwriter
