// The calculator as the program uses it, against numbers worked out by hand.
#include "timing/NSWaitingTimeCalculator.h"

#include <gtest/gtest.h>

namespace flashwriter {
namespace {

const NSWaitingTimeCalculator DEFAULT;

TEST(WaitingTime, ShortCommandsWaitAtLeastTheFloor) {
    EXPECT_EQ(DEFAULT.GetResetTcs1(), 100U);
    EXPECT_EQ(DEFAULT.GetProgrammingTcs5(true), 100U);
    EXPECT_EQ(DEFAULT.GetProgrammingTcs5(false), 100U);
    EXPECT_EQ(DEFAULT.GetSecuritySetTcs7(), 100U);
    EXPECT_EQ(DEFAULT.GetCheckSumTcs10(true), 100U);
    EXPECT_EQ(DEFAULT.GetCheckSumTcs10(false), 100U);
    EXPECT_EQ(DEFAULT.GetSiliconSignatureTcs11(), 100U);
    EXPECT_EQ(DEFAULT.GetSiliconSignatureTsd11(), 100U);
    EXPECT_EQ(DEFAULT.GetTdt(), 100U);
}

TEST(WaitingTime, SecurityGetAddsItsMarginToOneMillisecond) {
    EXPECT_EQ(DEFAULT.GetSecurityGetTcs8(), 101U);
    EXPECT_EQ(DEFAULT.GetSecurityGetTsd8(), 101U);
}

TEST(WaitingTime, BaudRateSetIsConstant) {
    EXPECT_EQ(NSWaitingTimeCalculator::GetBaudRateSetTcs6(), 55U);
}

TEST(WaitingTime, BlockEraseHasNeitherFloorNorMargin) {
    EXPECT_EQ(DEFAULT.GetBlockEraseTcs3(true), 258U);  // 2116.59 + 255098 us
    EXPECT_EQ(DEFAULT.GetBlockEraseTcs3(false), 274U); // 8794.47 + 264790 us
}

TEST(WaitingTime, BlankCheckOfOneBlockIsRaisedToTheFloor) {
    // 359.8 us
    EXPECT_EQ(DEFAULT.GetBlockBlankCheckTcs4(0x400, 0x7FF, 1, true), 100U);
}

TEST(WaitingTime, BlankCheckOfManyBlocksPassesTheFloor) {
    // 118.91 + 91 + 1000 * 125.53125 + 24.34 us
    EXPECT_EQ(DEFAULT.GetBlockBlankCheckTcs4(0, 0x3FFFF, 1000, true), 126U);
    // 78.22 + 86 + 1000 * 500.09375 us
    EXPECT_EQ(DEFAULT.GetBlockBlankCheckTcs4(0, 0x3FFFF, 1000, false), 501U);
}

TEST(WaitingTime, Programming) {
    EXPECT_EQ(DEFAULT.GetProgrammingTds5(true), 176U);  // 3546.94 + 71753 us
    EXPECT_EQ(DEFAULT.GetProgrammingTds5(false), 330U); // 9683.44 + 219761 us
    // 256 * 1113.75 + 54.125 + 36 + 22.6875 us
    EXPECT_EQ(DEFAULT.GetProgrammingTss5(0, 0x3FFFF, 256, true), 386U);
    // 12.41 + 30 + 8 * 4454.9375 us
    EXPECT_EQ(DEFAULT.GetProgrammingTss5(0xF1000, 0xF2FFF, 8, false), 136U);
}

TEST(WaitingTime, SecuritySetAndRelease) {
    EXPECT_EQ(DEFAULT.GetSecuritySetTds7(), 1037U);        // 8659.22 + 1027564 us
    EXPECT_EQ(DEFAULT.GetSecurityReleaseTcs9(0, 0), 517U); // 4555.72 + 511837 us
    // 4565.94 + 511868 + 256 * 125.53125 + 8 * 500.09375 + 24.34 us
    EXPECT_EQ(DEFAULT.GetSecurityReleaseTcs9(256, 8), 553U);
}

TEST(WaitingTime, ChecksumOfNothingWaitsTheFloor) {
    EXPECT_EQ(DEFAULT.GetCheckSumTsd10(0), 100U);
}

TEST(WaitingTime, ChecksumPassesTheFloorAtItsBlockCount) {
    EXPECT_EQ(DEFAULT.GetCheckSumTsd10(104), 100U); // 99842.25 us
    EXPECT_EQ(DEFAULT.GetCheckSumTsd10(105), 101U); // 100802.25 us
    EXPECT_EQ(DEFAULT.GetCheckSumTsd10(256), 246U); // 245762.25 us
}

TEST(WaitingTime, AWholeNumberOfMillisecondsStaysAsItIs) {
    NSWaitingTimeCalculator calculator;
    calculator.Initialize(1, true);
    // 47 * 7988 + 1732 + 36 + 4 * 199 = 378000 us; the margin comes on top.
    EXPECT_EQ(calculator.GetProgrammingTss5(0, 0xFFFFF, 47, true), 478U);
    // Another region makes 378199 us.
    EXPECT_EQ(calculator.GetProgrammingTss5(0, 0x100000, 47, true), 479U);
}

TEST(WaitingTime, InitializeChangesTheClockAndTheSet) {
    NSWaitingTimeCalculator calculator;
    calculator.Initialize(32, false);
    EXPECT_EQ(calculator.GetBlockEraseTcs3(true), 268U); // 1857.97 + 265331 us
    calculator.Initialize(1, true);
    EXPECT_EQ(calculator.GetBlockEraseTcs3(true), 323U); // 67731 + 255098 us
    calculator.Initialize(32, true);
    EXPECT_EQ(calculator.GetBlockEraseTcs3(true), 258U);
}

TEST(FlashAccessFrequency, CountsTheRegionsThatARangeTouches) {
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(0x3FC00, 0x40000), 2U);
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(0x3FC00, 0x3FFFF), 1U);
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(0x40000, 0x40000), 1U);
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(0, 0xFFFFFF), 64U);
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(0, UINT64_MAX), 1ULL << 46);
}

TEST(FlashAccessFrequency, WrapsWhenTheEndLiesInAnEarlierRegion) {
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(0x40000, 0), 0U);
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(0x80000, 0), UINT64_MAX);
}

TEST(FlashAccessFrequency, CountsGroupsOf256Blocks) {
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(0), 0U);
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(1), 1U);
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(256), 1U);
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(257), 2U);
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(512), 2U);
    for (std::uint64_t count = 0; count <= 2048; ++count) {
        EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(count), (count + 255) / 256);
    }
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(1ULL << 63), 1ULL << 55);
}

} // namespace
} // namespace flashwriter
