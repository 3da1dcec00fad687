#include "targetfile/NSTargetFileForMot.h"

#include "tests/unit/targetfile/MotFixture.h"
#include "tests/unit/targetfile/OrdinaryUser.h"

#include <sys/stat.h>

namespace flashwriter {
namespace {

using TargetFileForMot = MotFixture;

TEST_F(TargetFileForMot, StartsEmpty) {
    expectEmpty();
    EXPECT_EQ(m_file.GetFileType(), 0U);
}

TEST_F(TargetFileForMot, ReadsOneRecord) {
    ASSERT_EQ(read("S1130000000102030405060708090A0B0C0D0E0F74\n"), RESULT_OK);
    EXPECT_EQ(m_file.GetProgramMemorySize(), 0x10U);
    EXPECT_EQ(m_file.GetDataSize(), 0U);
    EXPECT_EQ(program(), counting(16));
    EXPECT_EQ(log(), "16,0");
}

TEST_F(TargetFileForMot, LeavesGapsErased) {
    ASSERT_EQ(read(motText({motLine(1, 0, counting(16)), motLine(1, 0x100, counting(16, 0x40))})),
              RESULT_OK);
    Bytes expected(0x110, 0xFF);
    std::ranges::copy(counting(16), expected.begin());
    std::ranges::copy(counting(16, 0x40), expected.begin() + 0x100);
    EXPECT_EQ(m_file.GetProgramMemorySize(), 0x110U);
    EXPECT_EQ(program(), expected);
}

TEST_F(TargetFileForMot, ReadsDataFlash) {
    for (const int type : {2, 3}) {
        ASSERT_EQ(read(motLine(type, 0xF1000, counting(8))), RESULT_OK);
        EXPECT_EQ(m_file.GetDataSize(), 0xF1008U);
        EXPECT_EQ(m_file.GetProgramMemorySize(), 0U);
        EXPECT_NE(m_file.GetProgramMemory(), nullptr) << "an empty image is there all the same";
        Bytes expected(0xF1008, 0xFF);
        std::ranges::copy(counting(8), expected.begin());
        EXPECT_EQ(data(), expected);
        EXPECT_EQ(log(), "0,987144");
    }
}

TEST_F(TargetFileForMot, RefusesARecordAcrossTheStartOfDataFlash) {
    const std::string text = motLine(2, 0xF0FF8, counting(16));
    EXPECT_EQ(m_file.MotFileSize(write(text)), RESULT_OK);
    EXPECT_EQ(m_file.GetDataSize(), 0xF1008U);
    EXPECT_EQ(read(text), RESULT_DATA_FLASH_SIZE_ERROR);
    EXPECT_EQ(data(), Bytes(0xF1008, 0xFF));
}

TEST_F(TargetFileForMot, RefusesAFileWithoutData) {
    EXPECT_EQ(read("S00F000068656C6C6F202020202000003C\nS9030000FC\n"), RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(log(), "0,0");
    EXPECT_EQ(read(""), RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(read("\n\n"), RESULT_UNSUPPORTED_FORMAT);
    expectEmpty();
}

TEST_F(TargetFileForMot, RefusesACommentLine) {
    EXPECT_EQ(
        read(motText({motLine(1, 0, counting(4)), "# a comment", motLine(1, 8, counting(4))})),
        RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(m_file.GetProgramMemorySize(), 4U) << "measured up to the line";
    EXPECT_EQ(m_file.GetProgramMemory(), nullptr);
    EXPECT_EQ(log(), "4,0");
}

TEST_F(TargetFileForMot, SkipsLinesOfNineCharacters) {
    EXPECT_EQ(read(motText({"#23456789", "", "S1", motLine(1, 0, counting(4)), "S9030000\r"})),
              RESULT_OK);
    EXPECT_EQ(read(motText({"#234567890", motLine(1, 0, counting(4))})), RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(read(motText({"#23456789", motLine(1, 0, counting(4))}, "\r\n")),
              RESULT_UNSUPPORTED_FORMAT)
        << "a carriage return is a character of its line";
}

TEST_F(TargetFileForMot, ReadsBothLineEndsAlike) {
    const std::string one = motLine(1, 0, counting(4));
    const std::string other = motLine(1, 4, counting(4, 4));
    for (const char* lineEnd : {"\n", "\r\n"}) {
        ASSERT_EQ(read(motText({one, other, "S9030000FC"}, lineEnd)), RESULT_OK);
        EXPECT_EQ(program(), counting(8));
    }
    ASSERT_EQ(read(one + "\n" + other), RESULT_OK) << "the last line may lack its end";
    EXPECT_EQ(program(), counting(8));
}

TEST_F(TargetFileForMot, AcceptsAWrongChecksum) {
    ASSERT_EQ(read("S1070000AABBCCDD00\nS1060004112233\n"), RESULT_OK);
    EXPECT_EQ(program(), (Bytes{0xAA, 0xBB, 0xCC, 0xDD, 0x11, 0x22, 0x33}));
}

TEST_F(TargetFileForMot, AcceptsLowerCaseDigits) {
    ASSERT_EQ(read("S107000aaAbBcCdDee\n"), RESULT_OK);
    EXPECT_EQ(m_file.GetProgramMemorySize(), 14U);
    EXPECT_EQ(m_file.GetProgramMemory()[10], 0xAA);
    EXPECT_EQ(m_file.GetProgramMemory()[13], 0xDD);
}

TEST_F(TargetFileForMot, RefusesALowerCaseS) {
    EXPECT_EQ(read("s1070000AABBCCDD00\n"), RESULT_UNSUPPORTED_FORMAT);
}

TEST_F(TargetFileForMot, SkipsRecordsOfOtherTypes) {
    for (const char type : {'0', '4', '5', '6', '7', '8', '9', 'A', 'f', 'x', ' '}) {
        const std::string other = std::string("S") + type + "130100000102030405060708090A0B";
        ASSERT_EQ(read(motText({other, motLine(1, 0, counting(4)), other})), RESULT_OK) << type;
        EXPECT_EQ(program(), counting(4)) << type;
    }
}

TEST_F(TargetFileForMot, ReadsAddressesOfEachTypesLength) {
    ASSERT_EQ(read(motText({motLine(1, 0x10, counting(2)), motLine(2, 0x12, counting(2, 2)),
                            motLine(3, 0x14, counting(2, 4))})),
              RESULT_OK);
    const Bytes bytes = program();
    EXPECT_EQ(Bytes(bytes.begin() + 0x10, bytes.end()), counting(6));
}

TEST_F(TargetFileForMot, LetsALaterRecordOverwrite) {
    ASSERT_EQ(read(motText({motLine(1, 4, counting(4, 0x80)), motLine(1, 0, counting(6))})),
              RESULT_OK);
    EXPECT_EQ(program(), (Bytes{0, 1, 2, 3, 4, 5, 0x82, 0x83}));
}

TEST_F(TargetFileForMot, ReadsCodeAndDataFlashTogether) {
    ASSERT_EQ(read(motText({motLine(2, 0xF1010, counting(4, 9)), motLine(1, 0, counting(4))})),
              RESULT_OK);
    EXPECT_EQ(program(), counting(4));
    EXPECT_EQ(m_file.GetDataSize(), 0xF1014U);
    EXPECT_EQ(m_file.GetDataFlash()[0x0F], 0xFF);
    EXPECT_EQ(m_file.GetDataFlash()[0x10], 9U);
    EXPECT_EQ(log(), "4,987156");
}

TEST_F(TargetFileForMot, SplitsAtTheRecordsEnd) {
    ASSERT_EQ(read(motLine(2, 0xF0FF0, counting(15))), RESULT_OK);
    EXPECT_EQ(m_file.GetProgramMemorySize(), 0xF0FFFU);
    EXPECT_EQ(read(motLine(2, 0xF0FF0, counting(16))), RESULT_DATA_FLASH_SIZE_ERROR);
    EXPECT_EQ(m_file.GetDataSize(), 0xF1000U);
}

TEST_F(TargetFileForMot, IgnoresTheExtension) {
    const std::string path = m_directory.write("image.txt", motLine(1, 0, counting(4)));
    EXPECT_EQ(m_file.ReadFile(path), RESULT_OK);
}

TEST_F(TargetFileForMot, FailsWhereNoFileCanBeRead) {
    ASSERT_EQ(::mkfifo(m_directory.path("fifo.mot").c_str(), 0600), 0);
    for (const std::string& path :
         {std::string(), m_directory.path("missing.mot"), m_directory.path(""),
          m_directory.path("fifo.mot"), std::string("/dev/zero"), write("S1") + '\0'}) {
        load();
        EXPECT_EQ(m_file.MotFileSize(path), RESULT_FILE_READ_FAILED) << path;
        EXPECT_EQ(program(), counting(4)) << "measuring in vain changes nothing";
        EXPECT_EQ(m_file.ReadFile(path), RESULT_FILE_READ_FAILED) << path;
        expectEmpty();
    }
}

TEST_F(TargetFileForMot, FailsWhereTheFileMayNotBeRead) {
    const std::string path = write(motLine(1, 0, counting(4)));
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    const OrdinaryUser user;
    EXPECT_EQ(m_file.ReadFile(path), RESULT_FILE_READ_FAILED);
}

TEST_F(TargetFileForMot, MeasuresWithoutTouchingTheImages) {
    load();
    EXPECT_EQ(m_file.MotFileSize(write(motLine(1, 0x20, counting(4)))), RESULT_OK);
    EXPECT_EQ(m_file.GetProgramMemorySize(), 0x24U);
    EXPECT_EQ(m_file.GetProgramMemory()[3], 3U);
}

TEST_F(TargetFileForMot, StartsEveryReadFromEmpty) {
    load();
    EXPECT_EQ(read("S9030000FC\n"), RESULT_UNSUPPORTED_FORMAT);
    expectEmpty();
    load();
    m_file.releaseData();
    expectEmpty();
}

TEST_F(TargetFileForMot, ReadsRawFilesToo) {
    load();
    EXPECT_EQ(m_file.readFromBinFile(write("raw")), RESULT_OK);
    EXPECT_EQ(program(), (Bytes{'r', 'a', 'w'}));
    EXPECT_EQ(m_file.GetDataFlash(), nullptr);
    EXPECT_EQ(m_file.GetFileType(), 0U);
    EXPECT_EQ(m_file.readFromBinFile(write(std::string(262145, 'x'))), RESULT_FILE_SIZE_ERROR);
    expectEmpty();
    load();
    EXPECT_EQ(m_file.readFromBinFile(m_directory.path("missing")), RESULT_FILE_READ_FAILED);
    expectEmpty();
}

TEST(Ascii2hex, ReadsAFieldOfAnyLine) {
    EXPECT_EQ(NSTargetFileForMot::ascii2hex("S1130000", 2, 2), 0x13U);
    EXPECT_EQ(NSTargetFileForMot::ascii2hex("Sé130000", 2, 2), 0x13U);
    EXPECT_EQ(NSTargetFileForMot::ascii2hex("S1x3", 2, 2), 0U);
}

TEST(Ascii2hex, IsZeroOutsideTheLine) {
    constexpr std::int32_t least = INT32_MIN;
    constexpr std::int32_t most = INT32_MAX;
    EXPECT_EQ(NSTargetFileForMot::ascii2hex("1234", -1, 2), 0U);
    EXPECT_EQ(NSTargetFileForMot::ascii2hex("1234", least, 2), 0U);
    EXPECT_EQ(NSTargetFileForMot::ascii2hex("1234", 0, -1), 0U);
    EXPECT_EQ(NSTargetFileForMot::ascii2hex("1234", 0, least), 0U);
    EXPECT_EQ(NSTargetFileForMot::ascii2hex("1234", 4, 1), 0U);
    EXPECT_EQ(NSTargetFileForMot::ascii2hex("1234", most, most), 0U);
    EXPECT_EQ(NSTargetFileForMot::ascii2hex("1234", 2, most), 0x34U);
    EXPECT_EQ(NSTargetFileForMot::ascii2hex("", 0, 1), 0U);
    EXPECT_EQ(NSTargetFileForMot::ascii2hex({}, 0, 1), 0U);
}

} // namespace
} // namespace flashwriter
