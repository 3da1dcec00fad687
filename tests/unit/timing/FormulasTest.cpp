// Every operation, in both coefficient sets and at several clocks, against exact arithmetic.
#include "ExactTime.h"
#include "timing/NSWaitingTimeCalculator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>

namespace flashwriter {
namespace {

struct Range {
    std::uint64_t start;
    std::uint64_t end;
    std::uint64_t regions;
};

constexpr Range RANGES[] = {
    {0x00000, 0x003FF, 1},    {0x3FC00, 0x3FFFF, 1},   {0x3FC00, 0x40000, 2}, {0x00000, 0x3FFFF, 1},
    {0x00000, 0xFFFFFF, 64},  {0x00400, 0xFF0700, 64}, // a block's addresses, bytes reversed
    {0x40000, 0x13FFFFF, 79},
};

constexpr std::uint64_t COUNTS[] = {0, 1, 2, 63, 255, 256, 257, 512, 513, 2048, 100000, 1ULL << 33};

class Formulas : public testing::TestWithParam<std::tuple<std::uint64_t, bool>> {
protected:
    Formulas() { calculator.Initialize(clock, fullSpeed); }

    // The argument order of the tables: cycles and microseconds, full speed first.
    ExactTerm pick(std::uint64_t count, std::uint64_t k1, std::uint64_t c1, std::uint64_t k2,
                   std::uint64_t c2) const {
        return fullSpeed ? ExactTerm{count, k1, c1} : ExactTerm{count, k2, c2};
    }

    std::uint64_t exact(std::initializer_list<ExactTerm> terms) const {
        return static_cast<std::uint64_t>(exactTime(clock, terms));
    }
    std::uint64_t floored(std::initializer_list<ExactTerm> terms) const {
        return std::max<std::uint64_t>(exact(terms), 100);
    }

    const std::uint64_t clock = std::get<0>(GetParam());
    const bool fullSpeed = std::get<1>(GetParam());
    NSWaitingTimeCalculator calculator;
};

TEST_P(Formulas, WithoutArguments) {
    EXPECT_EQ(calculator.GetResetTcs1(), floored({{1, 255, 0}}));
    EXPECT_EQ(NSWaitingTimeCalculator::GetBaudRateSetTcs6(), 55U);
    EXPECT_EQ(calculator.GetSecuritySetTcs7(), floored({{1, 168, 0}}));
    EXPECT_EQ(calculator.GetSecuritySetTds7(),
              floored({pick(1, 277095, 1027564, 242909, 1075967)}));
    EXPECT_EQ(calculator.GetSecurityGetTcs8(), exact({{1, 154, 0}}) + 100);
    EXPECT_EQ(calculator.GetSecurityGetTsd8(), exact({{1, 212, 0}}) + 100);
    EXPECT_EQ(calculator.GetSiliconSignatureTcs11(), floored({{1, 111, 0}}));
    EXPECT_EQ(calculator.GetSiliconSignatureTsd11(), floored({{1, 512, 0}}));
    EXPECT_EQ(calculator.GetTdt(), floored({{1, 10, 0}}));
}

TEST_P(Formulas, OfOneFlash) {
    EXPECT_EQ(calculator.GetBlockEraseTcs3(true), exact({pick(1, 67731, 255098, 59455, 265331)}));
    EXPECT_EQ(calculator.GetBlockEraseTcs3(false),
              exact({pick(1, 281423, 264790, 248862, 299307)}));
    EXPECT_EQ(calculator.GetProgrammingTcs5(true), floored({{1, 1432, 0}}));
    EXPECT_EQ(calculator.GetProgrammingTcs5(false), floored({{1, 346, 0}}));
    EXPECT_EQ(calculator.GetProgrammingTds5(true),
              exact({pick(1, 113502, 71753, 107803, 138891)}) + 100);
    EXPECT_EQ(calculator.GetProgrammingTds5(false),
              exact({pick(1, 309870, 219761, 287076, 488315)}) + 100);
    EXPECT_EQ(calculator.GetCheckSumTcs10(true), floored({{1, 203, 0}}));
    EXPECT_EQ(calculator.GetCheckSumTcs10(false), floored({{1, 219, 0}}));
}

TEST_P(Formulas, BlockBlankCheckOfCodeFlash) {
    for (const auto& [start, end, regions] : RANGES) {
        for (const std::uint64_t n : COUNTS) {
            EXPECT_EQ(calculator.GetBlockBlankCheckTcs4(start, end, n, true),
                      floored({pick(1, 3805, 91, 3799, 134), pick(n, 1457, 80, 1259, 278),
                               pick(regions, 203, 18, 199, 57)}))
                << n << " blocks, " << start << " to " << end;
        }
    }
}

TEST_P(Formulas, BlockBlankCheckOfDataFlash) {
    for (const auto& [start, end, regions] : RANGES) {
        for (const std::uint64_t n : COUNTS) {
            EXPECT_EQ(calculator.GetBlockBlankCheckTcs4(start, end, n, false),
                      floored({pick(1, 2503, 86, 2494, 168), pick(n, 5827, 318, 5035, 1110)}))
                << n << " blocks, " << start << " to " << end;
        }
    }
}

TEST_P(Formulas, InternalVerifyOfCodeFlash) {
    for (const auto& [start, end, regions] : RANGES) {
        for (const std::uint64_t n : COUNTS) {
            EXPECT_EQ(calculator.GetProgrammingTss5(start, end, n, true),
                      100 + exact({pick(n, 7096, 892, 4351, 7324),
                                   {1, 1732, 36},
                                   pick(regions, 182, 17, 184, 44)}))
                << n << " blocks, " << start << " to " << end;
        }
    }
}

TEST_P(Formulas, InternalVerifyOfDataFlash) {
    for (const auto& [start, end, regions] : RANGES) {
        for (const std::uint64_t n : COUNTS) {
            EXPECT_EQ(calculator.GetProgrammingTss5(start, end, n, false),
                      100 + exact({pick(1, 397, 30, 398, 58), pick(n, 28382, 3568, 17403, 29293)}))
                << n << " blocks, " << start << " to " << end;
        }
    }
}

TEST_P(Formulas, SecurityRelease) {
    for (const std::uint64_t c : COUNTS) {
        const std::uint64_t groups = c / 256 + (c % 256 != 0 ? 1 : 0);
        const ExactTerm blocks = pick(c, 1457, 80, 1259, 278);
        const ExactTerm regions = pick(groups, 203, 18, 199, 57);
        EXPECT_EQ(calculator.GetSecurityReleaseTcs9(c, 0),
                  exact({pick(1, 145783, 511837, 128084, 534653), blocks, regions}))
            << c << " blocks of code flash";
        for (const std::uint64_t d : {1ULL, 2ULL, 8ULL, 1ULL << 33}) {
            EXPECT_EQ(calculator.GetSecurityReleaseTcs9(c, d),
                      exact({pick(1, 146110, 511868, 128408, 534723), blocks,
                             pick(d, 5827, 318, 5035, 1110), regions}))
                << c << " and " << d << " blocks";
        }
    }
}

TEST_P(Formulas, ChecksumData) {
    for (const std::uint64_t n : COUNTS) {
        EXPECT_EQ(calculator.GetCheckSumTsd10(n), floored({{n, 30720, 0}, {1, 72, 0}}))
            << n << " blocks";
    }
}

INSTANTIATE_TEST_SUITE_P(ClocksAndSets, Formulas,
                         testing::Combine(testing::Values(1, 2, 20, 24, 32, 64, 1000),
                                          testing::Bool()),
                         [](const auto& instance) {
                             return std::to_string(std::get<0>(instance.param)) + "MHz" +
                                    (std::get<1>(instance.param) ? "FullSpeed" : "Other");
                         });

} // namespace
} // namespace flashwriter
