// S-record files whose records do not tell the truth about themselves.
#include "tests/unit/targetfile/MotFixture.h"

#include <sys/resource.h>

namespace flashwriter {
namespace {

using MotLies = MotFixture;

TEST_F(MotLies, ReadsDigitsThatTheLineLacksAsZero) {
    ASSERT_EQ(read("S10F0000AABBCCD\n"), RESULT_OK);
    EXPECT_EQ(program(), (Bytes{0xAA, 0xBB, 0xCC, 0x0D, 0, 0, 0, 0, 0, 0, 0, 0}));
    ASSERT_EQ(read("S10F0000AABBCCD\r\n"), RESULT_OK);
    EXPECT_EQ(program(), (Bytes{0xAA, 0xBB, 0xCC, 0x0D, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(MotLies, ReadsThePartOfAnAddressThatIsThere) {
    ASSERT_EQ(read("S307000010"), RESULT_OK) << "ten characters of twelve";
    EXPECT_EQ(m_file.GetProgramMemorySize(), 0x12U);
    EXPECT_EQ(m_file.GetProgramMemory()[0x10], 0U);
    EXPECT_EQ(m_file.GetProgramMemory()[0x0F], 0xFF);
}

TEST_F(MotLies, TrustsAByteCountThatEndsBeforeTheLine) {
    ASSERT_EQ(read("S1050000AABBCCDDEEFF00\n"), RESULT_OK);
    EXPECT_EQ(program(), (Bytes{0xAA, 0xBB}));
}

TEST_F(MotLies, LetsARecordWithoutDataExtendTheImage) {
    ASSERT_EQ(read("S1030010EC\n" + m_good), RESULT_OK);
    EXPECT_EQ(m_file.GetProgramMemorySize(), 0x10U);
    EXPECT_EQ(m_file.GetProgramMemory()[4], 0xFF);
}

TEST_F(MotLies, RefusesAByteCountTooSmallForTheAddress) {
    EXPECT_EQ(read("S1020100FC\n" + m_good), RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(m_file.GetProgramMemorySize(), 0xFFU) << "one byte short of its address";
    EXPECT_EQ(program(), Bytes(0xFF, 0xFF));
    EXPECT_EQ(read("S200000100FC\n"), RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(m_file.GetProgramMemorySize(), 0xFCU);
    EXPECT_EQ(read("S2000F1010FC\n"), RESULT_UNSUPPORTED_FORMAT) << "in data flash";
    EXPECT_EQ(data(), Bytes(0xF100C, 0xFF));
    EXPECT_EQ(read("S2000F1002FC\n"), RESULT_UNSUPPORTED_FORMAT) << "ends in code flash";
    EXPECT_EQ(m_file.GetProgramMemorySize(), 0xF0FFEU);
}

TEST_F(MotLies, CountsAByteCountThatReachesBelowZeroForAnEnormousExtent) {
    EXPECT_EQ(read("S1000000FF\n"), RESULT_DATA_FLASH_SIZE_ERROR);
    EXPECT_EQ(log(), "0,4294967293");
    EXPECT_EQ(m_file.GetDataSize(), 4294967293U);
}

TEST_F(MotLies, RefusesAnAddressThatWraps) {
    EXPECT_EQ(read("S315FFFFFFF0" + std::string(32, '0') + "00\n"), RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(log(), "0,0") << "the end is 0";
    expectEmpty();
    EXPECT_EQ(read("S315FFFFFFF0" + std::string(32, '0') + "00\n" + m_good),
              RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(program(), Bytes(4, 0xFF)) << "the end, 0, lies in code flash; the bytes do not";
    EXPECT_EQ(read(m_good + "S317FFFFFFF0" + std::string(36, '0') + "00\n"),
              RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(program(), counting(4));
}

TEST_F(MotLies, KeepsADataImageOfExactly16MiB) {
    ASSERT_EQ(read(motLine(3, 0xFFFFF0, counting(16))), RESULT_OK);
    EXPECT_EQ(m_file.GetDataSize(), 0x1000000U);
    EXPECT_EQ(m_file.GetDataFlash()[0xFFFFF0 - 0xF1000], 0U);
    EXPECT_EQ(m_file.GetDataFlash()[0xFFFFFF - 0xF1000], 15U);
    EXPECT_EQ(m_file.GetDataFlash()[0xFFFFFF], 0xFF);
}

// As in an image that was built for another board: that it is none for this one, its extent tells.
TEST_F(MotLies, TellsTheExtentOfAnImageThatGoesFurther) {
    const std::string low = motLine(3, 0xF1000, counting(16)) + "\n";
    for (const std::uint32_t address : {0x10F1000U, 0x8000000U, 0x7FFFFFFFU, 0xFFFFFFEFU}) {
        SCOPED_TRACE(address);
        ASSERT_EQ(read(m_good + low + motLine(3, address, counting(16))), RESULT_OK);
        EXPECT_EQ(program(), counting(4));
        EXPECT_EQ(m_file.GetDataSize(), std::uint64_t{address} + 16);
        Bytes kept(0x1000000, 0xFF);
        std::ranges::copy(counting(16), kept.begin());
        EXPECT_TRUE(data() == kept);
    }
}

TEST_F(MotLies, KeepsOfARecordWhatLiesInTheFirst16MiB) {
    ASSERT_EQ(read(motLine(3, 0x10F1000 - 4, counting(16))), RESULT_OK);
    EXPECT_EQ(m_file.GetDataSize(), 0x10F100CU);
    Bytes kept(0x1000000 - 4, 0xFF);
    for (const std::uint8_t byte : counting(4)) {
        kept.push_back(byte);
    }
    EXPECT_TRUE(data() == kept);
}

TEST_F(MotLies, RefusesAWrapInAnImageThatGoesFurther) {
    const std::string far = motLine(3, 0xFFFFFF00, counting(16)) + "\n";
    EXPECT_EQ(read(far + "S3FFFFFFFFF0" + std::string(500, '0')), RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(read(far + "S300FFFFFFF000"), RESULT_UNSUPPORTED_FORMAT);
}

TEST_F(MotLies, LetsACommentOutweighAnEnormousExtent) {
    EXPECT_EQ(read(motLine(3, 0x7FFFFFFF, counting(16)) + "\n# a comment\n"),
              RESULT_UNSUPPORTED_FORMAT);
}

// The most memory that the process ever had, in the system's unit: kilobytes, or bytes on macOS.
long peakMemory() {
    struct rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST_F(MotLies, ReadsAFileOf4GiBInConstantMemory) {
    const std::string path = write(m_good + "S0");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 32U);
    std::ofstream(path, std::ios::app) << "\n" << motLine(1, 4, counting(4, 4)) << "\n";
    const long before = peakMemory();
    ASSERT_EQ(m_file.ReadFile(path), RESULT_OK);
    EXPECT_LT(peakMemory(), 2 * before) << "a test program has some ten MiB, not thousands";
    EXPECT_EQ(program(), counting(8));
}

TEST_F(MotLies, ReadsALineOfAnyLength) {
    const std::string zeros(1000000, '0');
    ASSERT_EQ(read("S1FF0000" + zeros + "\n" + m_good), RESULT_OK);
    Bytes expected(252, 0);
    std::ranges::copy(counting(4), expected.begin());
    EXPECT_EQ(program(), expected);
}

} // namespace
} // namespace flashwriter
