// Results that no longer fit, or that doubles hold only nearly.
#include "ExactTime.h"
#include "timing/NSWaitingTimeCalculator.h"

#include <gtest/gtest.h>

namespace flashwriter {
namespace {

class ClockOfZero : public testing::TestWithParam<bool> {
protected:
    ClockOfZero() { calculator.Initialize(0, GetParam()); }

    NSWaitingTimeCalculator calculator;
};

TEST_P(ClockOfZero, NeverLetsAnAnswerBeLate) {
    EXPECT_EQ(calculator.GetResetTcs1(), UINT64_MAX);
    EXPECT_EQ(calculator.GetSecuritySetTcs7(), UINT64_MAX);
    EXPECT_EQ(calculator.GetSecuritySetTds7(), UINT64_MAX);
    EXPECT_EQ(calculator.GetSecurityGetTcs8(), UINT64_MAX);
    EXPECT_EQ(calculator.GetSecurityGetTsd8(), UINT64_MAX);
    EXPECT_EQ(calculator.GetSiliconSignatureTcs11(), UINT64_MAX);
    EXPECT_EQ(calculator.GetSiliconSignatureTsd11(), UINT64_MAX);
    EXPECT_EQ(calculator.GetTdt(), UINT64_MAX);
    for (const bool codeFlash : {true, false}) {
        EXPECT_EQ(calculator.GetBlockEraseTcs3(codeFlash), UINT64_MAX);
        EXPECT_EQ(calculator.GetProgrammingTcs5(codeFlash), UINT64_MAX);
        EXPECT_EQ(calculator.GetProgrammingTds5(codeFlash), UINT64_MAX);
        EXPECT_EQ(calculator.GetCheckSumTcs10(codeFlash), UINT64_MAX);
    }
}

// No blocks of infinitely many cycles each are not a number, rather than infinity.
TEST_P(ClockOfZero, NeverLetsAnAnswerBeLateWhateverTheBlockCount) {
    for (const std::uint64_t count : {std::uint64_t{0}, std::uint64_t{1}, UINT64_MAX}) {
        for (const bool codeFlash : {true, false}) {
            EXPECT_EQ(calculator.GetBlockBlankCheckTcs4(0, 0x3FF, count, codeFlash), UINT64_MAX);
            EXPECT_EQ(calculator.GetProgrammingTss5(0, 0x3FF, count, codeFlash), UINT64_MAX);
        }
        EXPECT_EQ(calculator.GetCheckSumTsd10(count), UINT64_MAX);
        EXPECT_EQ(calculator.GetSecurityReleaseTcs9(count, 0), UINT64_MAX);
        EXPECT_EQ(calculator.GetSecurityReleaseTcs9(count, 8), UINT64_MAX);
    }
}

TEST_P(ClockOfZero, LeavesWhatDoesNotDependOnTheClock) {
    EXPECT_EQ(NSWaitingTimeCalculator::GetBaudRateSetTcs6(), 55U);
    EXPECT_EQ(NSWaitingTimeCalculator::getFlashAccessFrequency(257), 2U);
}

INSTANTIATE_TEST_SUITE_P(Sets, ClockOfZero, testing::Bool(), [](const auto& instance) {
    return instance.param ? "FullSpeed" : "Other";
});

TEST(HugeCounts, ThatDoNotFitSaturateInsteadOfWrapping) {
    NSWaitingTimeCalculator calculator;
    calculator.Initialize(1, true);
    EXPECT_EQ(calculator.GetBlockBlankCheckTcs4(0, 0, UINT64_MAX, true), UINT64_MAX);
    EXPECT_EQ(calculator.GetProgrammingTss5(0, 0, UINT64_MAX, true), UINT64_MAX); // 100 on top
    EXPECT_EQ(calculator.GetProgrammingTss5(0, 0, UINT64_MAX, false), UINT64_MAX);
    EXPECT_EQ(calculator.GetCheckSumTsd10(UINT64_MAX), UINT64_MAX);
    EXPECT_EQ(calculator.GetSecurityReleaseTcs9(UINT64_MAX, UINT64_MAX), UINT64_MAX);
}

// Above 2^53 a double holds a result only to its 53 leading bits.
void expectNearly(std::uint64_t actual, Wide exact) {
    ASSERT_LE(exact, Wide{UINT64_MAX});
    const auto expected = static_cast<std::uint64_t>(exact);
    const std::uint64_t difference = actual > expected ? actual - expected : expected - actual;
    EXPECT_LE(difference, expected >> 50U) << actual << " for " << expected;
}

TEST(HugeCounts, ThatFitAreConvertedAsUnsigned) {
    const NSWaitingTimeCalculator calculator;
    const std::uint64_t checksum = calculator.GetCheckSumTsd10(UINT64_MAX);
    EXPECT_GT(checksum, 1ULL << 63);
    EXPECT_LT(checksum, UINT64_MAX);
    expectNearly(checksum, exactTime(32, {{UINT64_MAX, 30720, 0}, {1, 72, 0}}));

    const std::uint64_t release = calculator.GetSecurityReleaseTcs9(UINT64_MAX, UINT64_MAX);
    EXPECT_GT(release, 1ULL << 63);
    expectNearly(release, exactTime(32, {{1, 146110, 511868},
                                         {UINT64_MAX, 1457, 80},
                                         {UINT64_MAX, 5827, 318},
                                         {1ULL << 56, 203, 18}}));
    expectNearly(calculator.GetBlockBlankCheckTcs4(0, UINT64_MAX, UINT64_MAX, true),
                 exactTime(32, {{1, 3805, 91}, {UINT64_MAX, 1457, 80}, {1ULL << 46, 203, 18}}));
}

// At 6 MHz the exact sum is 1349000 us sharp. In doubles it comes out a hair above, and the result
// is a millisecond more: the sums are doubles, rounded term by term.
TEST(Doubles, KeepTheirRoundingErrors) {
    ASSERT_EQ(exactTime(6, {{650, 7096, 892}, {1, 1732, 36}, {3, 182, 17}}), Wide{1349});
    NSWaitingTimeCalculator calculator;
    calculator.Initialize(6, true);
    EXPECT_EQ(calculator.GetProgrammingTss5(0, 0xBFFFF, 650, true), 1450U);
}

} // namespace
} // namespace flashwriter
