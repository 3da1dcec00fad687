// S-record files that are not plain ASCII.
#include "tests/unit/targetfile/MotFixture.h"

namespace flashwriter {
namespace {

using MotEncoding = MotFixture;

TEST_F(MotEncoding, SkipsAByteOrderMark) {
    ASSERT_EQ(read("\xEF\xBB\xBF" + m_good), RESULT_OK);
    EXPECT_EQ(program(), counting(4));
    EXPECT_EQ(read(m_good + "\xEF\xBB\xBF" + m_good), RESULT_UNSUPPORTED_FORMAT)
        << "anywhere else it is a character like any other";
}

TEST_F(MotEncoding, ReadsTextBesideTheRecords) {
    ASSERT_EQ(read("S0エラー：ファイル名\n" + m_good + "S9030000FC ← 終わり\n"), RESULT_OK);
    EXPECT_EQ(program(), counting(4));
}

TEST_F(MotEncoding, CountsTheCharactersOfALine) {
    ASSERT_EQ(read("エラーエラーエラー\n" + m_good), RESULT_OK) << "nine characters, 27 bytes";
    EXPECT_EQ(read("エラーエラーエラー！\n" + m_good), RESULT_UNSUPPORTED_FORMAT);
}

TEST_F(MotEncoding, FindsFieldsBehindACharacterOfSeveralBytes) {
    // The byte count's second character: the count is 1 by its first, too small for an address.
    EXPECT_EQ(read("S11é0100AABB\n"), RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(m_file.GetProgramMemorySize(), 0xFEU);
    // The address ends at the character in it; the data stands where it would have.
    ASSERT_EQ(read("S1050é00AABBCC\n"), RESULT_OK);
    EXPECT_EQ(program(), (Bytes{0xAA, 0xBB}));
    // A data byte ends at the character in it, or has no digit at all; the others stay in place.
    ASSERT_EQ(read("S1080000AAéBCCDéEEFF\n"), RESULT_OK);
    EXPECT_EQ(program(), (Bytes{0xAA, 0x00, 0xCC, 0x0D, 0xEE}));
}

TEST_F(MotEncoding, ReadsALongRecordOfWideCharacters) {
    std::string line = "S1FF0000";
    for (int i = 0; i < 251; ++i) {
        line += "5\xF0\x9F\x98\x80";
    }
    ASSERT_EQ(read(line + "A7 and a checksum behind\n" + m_good), RESULT_OK);
    Bytes expected(252, 0x05);
    std::ranges::copy(counting(4), expected.begin());
    expected[251] = 0xA7;
    EXPECT_EQ(program(), expected);
}

TEST_F(MotEncoding, RefusesTextThatIsNotUtf8) {
    for (const char* bad : {"\xFF", "\x80", "\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80",
                            "\xF4\x90\x80\x80", "\xF0\x8F\xBF\xBF", "\xC3", "\xFE\xFFS"}) {
        load();
        EXPECT_EQ(read(m_good + bad), RESULT_FILE_READ_FAILED) << testing::PrintToString(bad);
        expectEmpty();
        EXPECT_EQ(read(bad + ("\n" + m_good)), RESULT_FILE_READ_FAILED);
        EXPECT_EQ(read(m_good + motText({std::string("S0").append(bad), m_good})),
                  RESULT_FILE_READ_FAILED);
    }
}

// The text comes first, the records second: whatever they say, a file that is no text is no text.
TEST_F(MotEncoding, OutweighsEveryOtherOutcome) {
    const std::string far(3000000, '\n');
    for (const std::string& first : {std::string("# a comment\n"), std::string("S9030000FC\n"),
                                     motLine(2, 0xF0FF8, counting(16)) + "\n"}) {
        EXPECT_NE(read(first + far), RESULT_OK);
        EXPECT_NE(read(first + far), RESULT_FILE_READ_FAILED);
        EXPECT_EQ(read(first + far + "\xFF"), RESULT_FILE_READ_FAILED) << first;
        expectEmpty();
    }
}

TEST_F(MotEncoding, TakesANulForACharacter) {
    EXPECT_EQ(read(std::string(100, '\0')), RESULT_UNSUPPORTED_FORMAT);
    ASSERT_EQ(read(std::string("\0\0\n", 3) + m_good), RESULT_OK);
    ASSERT_EQ(read(std::string("S1050000A\0BB\n", 13)), RESULT_OK);
    EXPECT_EQ(program(), (Bytes{0x0A, 0xBB}));
}

} // namespace
} // namespace flashwriter
