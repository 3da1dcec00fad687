// S-record files that become others between the two passes.
#include "targetfile/MotPasses.h"
#include "tests/unit/targetfile/MotFixture.h"

namespace flashwriter {
namespace {

class MotChangedFile : public MotFixture {
protected:
    ResultCode readThen(std::string_view first, const std::string& second) {
        m_betweenPasses = [this, second] { write(second); };
        const ResultCode result = read(first);
        m_betweenPasses = nullptr;
        return result;
    }
    const std::string m_code = motLine(1, 0, counting(4));
    const std::string m_data = motLine(2, 0xF1000, counting(8));
};

TEST_F(MotChangedFile, FillsNoMoreCodeFlashThanWasMeasured) {
    ASSERT_EQ(readThen(m_code, motLine(1, 0, counting(4, 0x20))), RESULT_OK);
    EXPECT_EQ(program(), counting(4, 0x20));
    EXPECT_EQ(readThen(m_code, motLine(1, 1, counting(4))), RESULT_DATA_FLASH_SIZE_ERROR);
    EXPECT_EQ(program(), Bytes(4, 0xFF));
    EXPECT_EQ(readThen(m_code, motLine(2, 0xF0FFF, {})), RESULT_DATA_FLASH_SIZE_ERROR);
}

TEST_F(MotChangedFile, FillsNoDataFlashWhereNoneWasMeasured) {
    EXPECT_EQ(readThen(m_code, m_data), RESULT_DATA_FLASH_SIZE_ERROR);
    EXPECT_EQ(readThen(m_code, motLine(2, 0xF1000, {})), RESULT_DATA_FLASH_SIZE_ERROR);
}

// The data image is larger than the data flash, and the check lets records use all of it.
TEST_F(MotChangedFile, FillsTheDataImageToItsEnd) {
    const std::uint32_t limit = 0xF1008 + 0xF1000;
    ASSERT_EQ(readThen(m_data, motLine(3, limit - 17, counting(16))), RESULT_OK);
    EXPECT_EQ(m_file.GetDataFlash()[0xF1006], 15U);
    EXPECT_EQ(m_file.GetDataFlash()[0xF1007], 0xFF);
    EXPECT_EQ(readThen(m_data, motLine(3, limit - 16, counting(16))), RESULT_DATA_FLASH_SIZE_ERROR);
    EXPECT_EQ(readThen(m_data, motLine(3, 0xFFFFFF00, counting(16))), RESULT_DATA_FLASH_SIZE_ERROR);
}

TEST_F(MotChangedFile, RefusesAWrapThatEndsBetweenTheImages) {
    EXPECT_EQ(readThen(m_data, "S313FFFFFFFF" + std::string(28, '0')), RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(data(), Bytes(0xF1008, 0xFF));
}

TEST_F(MotChangedFile, RefusesACommentInTheSecondPass) {
    EXPECT_EQ(readThen(m_code, m_code + "\n# a comment\n"), RESULT_UNSUPPORTED_FORMAT);
    EXPECT_EQ(program(), counting(4)) << "filled up to the line";
}

TEST_F(MotChangedFile, LeavesErasedWhatIsNoLongerThere) {
    ASSERT_EQ(readThen(m_code, ""), RESULT_OK);
    EXPECT_EQ(program(), Bytes(4, 0xFF));
}

TEST_F(MotChangedFile, FailsWhenTheTextCannotBeReadAgain) {
    EXPECT_EQ(readThen(m_code, m_code + "\n\xFF"), RESULT_FILE_READ_FAILED);
    expectEmpty();
    // Far behind a record that is refused, so that the record comes to be looked at.
    const std::string refused = motLine(1, 1, counting(4)).append(3000000, '\n');
    EXPECT_EQ(readThen(m_code, refused), RESULT_DATA_FLASH_SIZE_ERROR);
    EXPECT_EQ(readThen(m_code, std::string(refused).append("\xFF")), RESULT_FILE_READ_FAILED);
    expectEmpty();
    m_betweenPasses = [this] { std::filesystem::remove(m_directory.path("image.mot")); };
    EXPECT_EQ(read(m_code), RESULT_FILE_READ_FAILED);
    expectEmpty();
}

MotRecord recordOf(const std::string& line) {
    const std::size_t addressLength = (2U * lineOf(line).hex(1, 1)) + 2;
    const std::uint32_t size = lineOf(line).hex(2, 2) - lineOf(line).hex(1, 1) - 2;
    const std::uint32_t address = lineOf(line).hex(4, addressLength);
    return {address, size, address + size, 4 + addressLength, lineOf(line)};
}

// Whatever end a record claims, its bytes are held against the image.
TEST(StoreMotRecord, WritesUpToTheImagesLastByte) {
    Bytes program(16, 0xFF);
    Bytes data(16, 0xFF);
    const MotImages images{program.data(), program.size(), data.data(), data.size()};
    const std::string digits(40, '1');
    MotRecord record{12, 4, 16, 0, lineOf(digits)};
    EXPECT_EQ(storeMotRecord(record, images), RESULT_OK);
    EXPECT_EQ(program[11], 0xFF);
    EXPECT_EQ(program[15], 0x11);
    record.size = 5;
    EXPECT_EQ(storeMotRecord(record, images), RESULT_UNSUPPORTED_FORMAT);
    record = {0xF1000 + 12, 4, 0xF1000 + 15, 0, lineOf(digits)};
    EXPECT_EQ(storeMotRecord(record, images), RESULT_OK);
    EXPECT_EQ(data[11], 0xFF);
    EXPECT_EQ(data[15], 0x11);
    record.size = 5;
    EXPECT_EQ(storeMotRecord(record, images), RESULT_UNSUPPORTED_FORMAT);
}

// What the class never offers, since it allocates both images or fails.
TEST(StoreMotRecord, SkipsEveryRecordWithoutADataImage) {
    Bytes program(16, 0xFF);
    const MotImages images{program.data(), program.size(), nullptr, 0xF1010};
    EXPECT_EQ(storeMotRecord(recordOf(motLine(1, 0, counting(4))), images), RESULT_OK);
    EXPECT_EQ(storeMotRecord(recordOf(motLine(2, 0xF1000, counting(4))), images), RESULT_OK);
    EXPECT_EQ(storeMotRecord(recordOf("S1000008"), images), RESULT_OK);
    EXPECT_EQ(program, Bytes(16, 0xFF));
    EXPECT_EQ(storeMotRecord(recordOf(motLine(1, 13, counting(4))), images),
              RESULT_DATA_FLASH_SIZE_ERROR)
        << "but not one that is refused for its address";
}

} // namespace
} // namespace flashwriter
