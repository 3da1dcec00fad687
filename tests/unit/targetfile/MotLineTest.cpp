#include "targetfile/MotLine.h"

#include "tests/unit/targetfile/MotText.h"

#include <gtest/gtest.h>

namespace flashwriter {
namespace {

Bytes hexBytes(std::string_view text, std::size_t index, std::size_t count) {
    Bytes bytes(count, 0xEE);
    lineOf(text).hexBytes(index, count, bytes.data());
    return bytes;
}

TEST(MotLine, ReadsDigitsOfBothCases) {
    EXPECT_EQ(lineOf("0123456789abcdefABCDEF").hex(0, 8), 0x01234567U);
    EXPECT_EQ(lineOf("0123456789abcdefABCDEF").hex(8, 8), 0x89ABCDEFU);
    EXPECT_EQ(lineOf("0123456789abcdefABCDEF").hex(16, 6), 0xABCDEFU);
}

TEST(MotLine, StopsAtTheFirstCharacterThatIsNoDigit) {
    EXPECT_EQ(lineOf("12G4").hex(0, 4), 0x12U);
    EXPECT_EQ(lineOf("1\r").hex(0, 2), 1U);
    EXPECT_EQ(lineOf("12é45").hex(0, 5), 0x12U);
    EXPECT_EQ(lineOf(std::string_view("1\0002", 3)).hex(0, 3), 1U);
}

TEST(MotLine, ReadsNothingWithoutALeadingDigit) {
    for (const char* text : {"G1", " 12", "-1", "+1", "/1", ":1", "@1", "`1", "g1", "é1", ""}) {
        EXPECT_EQ(lineOf(text).hex(0, 3), 0U) << text;
    }
    EXPECT_EQ(lineOf("0x12").hex(0, 4), 0U) << "the scan ends at the x";
}

TEST(MotLine, ReadsThePartOfAFieldThatIsThere) {
    EXPECT_EQ(lineOf("S1A").hex(2, 2), 0xAU);
    EXPECT_EQ(lineOf("S1A").hex(3, 2), 0U);
    EXPECT_EQ(lineOf("S1A").hex(1000, 2), 0U);
    EXPECT_EQ(lineOf("S1A").hex(1, 0), 0U);
}

TEST(MotLine, KeepsToTheLargestValueBeyond32Bits) {
    EXPECT_EQ(lineOf("FFFFFFFF").hex(0, 9), 0xFFFFFFFFU);
    EXPECT_EQ(lineOf("000000000012").hex(0, 12), 0x12U);
    EXPECT_EQ(lineOf("100000000").hex(0, 9), 0xFFFFFFFFU);
}

TEST(MotLine, CountsCharactersNotBytes) {
    EXPECT_EQ(lineOf("Sé12").hex(2, 2), 0x12U);
    EXPECT_EQ(lineOf("エラー12").hex(3, 2), 0x12U);
    EXPECT_EQ(lineOf("\xF0\x9F\x98\x80"
                     "34")
                  .hex(1, 2),
              0x34U);
    EXPECT_FALSE(lineOf("12345678é").isLongerThan(9));
    EXPECT_TRUE(lineOf("12345678éa").isLongerThan(9));
    EXPECT_FALSE(lineOf("エラーエラーエラー").isLongerThan(9));
    EXPECT_TRUE(lineOf("エラーエラーエラー。").isLongerThan(9));
}

TEST(MotLine, TellsItsLength) {
    EXPECT_FALSE(lineOf("").isLongerThan(0));
    EXPECT_FALSE(lineOf("123456789").isLongerThan(9));
    EXPECT_TRUE(lineOf("1234567890").isLongerThan(9));
    EXPECT_TRUE(lineOf("123456789\r").isLongerThan(9));
}

TEST(MotLine, TellsHowItBegins) {
    EXPECT_TRUE(lineOf("S1").startsWith('S'));
    EXPECT_FALSE(lineOf("s1").startsWith('S'));
    EXPECT_FALSE(lineOf(" S1").startsWith('S'));
    EXPECT_FALSE(lineOf("").startsWith('S'));
    EXPECT_FALSE(MotLine().startsWith('S'));
}

TEST(MotLine, StoresPairsOfDigits) {
    EXPECT_EQ(hexBytes("S100fFa5", 2, 3), (Bytes{0x00, 0xFF, 0xA5}));
    EXPECT_EQ(hexBytes("S100fFa5", 2, 0), Bytes{});
}

TEST(MotLine, StoresZerosBeyondItsEnd) {
    EXPECT_EQ(hexBytes("12345", 0, 5), (Bytes{0x12, 0x34, 0x05, 0, 0}));
    EXPECT_EQ(hexBytes("12", 7, 2), (Bytes{0, 0}));
    EXPECT_EQ(hexBytes("é2345", 1, 4), (Bytes{0x23, 0x45, 0, 0}));
    EXPECT_EQ(hexBytes("é345", 1, 3), (Bytes{0x34, 0x05, 0}));
}

TEST(MotLine, ScansEveryPairForItself) {
    EXPECT_EQ(hexBytes("1G2345", 0, 3), (Bytes{0x01, 0x23, 0x45}));
    EXPECT_EQ(hexBytes("G12345", 0, 3), (Bytes{0x00, 0x23, 0x45}));
    EXPECT_EQ(hexBytes("GG23 5", 0, 3), (Bytes{0x00, 0x23, 0x00}));
    EXPECT_EQ(hexBytes("1é23é5", 0, 3), (Bytes{0x01, 0x23, 0x00}));
    EXPECT_EQ(hexBytes("12ラー56", 0, 3), (Bytes{0x12, 0x00, 0x56}));
}

// Every pair of bytes that can stand in a line, against the scan of one field.
TEST(MotLine, StoresWhatTheScanOfEachPairGives) {
    for (int first = 0; first < 0x80; ++first) {
        for (int second = 0; second < 0x80; ++second) {
            const std::string text{static_cast<char>(first), static_cast<char>(second)};
            EXPECT_EQ(hexBytes(text, 0, 1)[0], lineOf(text).hex(0, 2)) << first << ' ' << second;
        }
    }
}

TEST(MotLine, IsSafeOnTextThatIsNotUtf8) {
    for (const char* text : {"\x80\x80\x80", "\xC3", "S1\xF0",
                             "\xFF\xFF"
                             "12"}) {
        const MotLine line = lineOf(text);
        for (std::size_t index = 0; index < 8; ++index) {
            line.hex(index, 8);
            hexBytes(text, index, 8);
            line.isLongerThan(index);
        }
    }
}

} // namespace
} // namespace flashwriter
