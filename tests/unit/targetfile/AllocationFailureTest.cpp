// What happens when memory runs out.
#include "targetfile/NSTargetFile.h"
#include "tests/support/ScarceMemory.h"
#include "tests/unit/targetfile/MotFixture.h"

namespace flashwriter {
namespace {

constexpr std::size_t unlimited = SIZE_MAX;

// Allocations that are larger than this are large: file buffers and images.
constexpr std::size_t largestSmallAllocation = 1000;

// How many more large allocations succeed.
std::size_t largeAllocationsLeft = unlimited;

std::size_t largestAllocation = 0;

bool isThereMemory(std::size_t size) {
    largestAllocation = std::max(largestAllocation, size);
    if (size <= largestSmallAllocation || largeAllocationsLeft == unlimited) {
        return true;
    }
    const bool isThere = largeAllocationsLeft != 0;
    largeAllocationsLeft -= isThere ? 1 : 0;
    return isThere;
}

class AllocationFailure : public MotFixture {
protected:
    AllocationFailure() { testing::memoryRule = isThereMemory; }
    ~AllocationFailure() override { testing::memoryRule = nullptr; }

    // Reads path when only so many large allocations succeed.
    template <class File>
    ResultCode readWith(std::size_t allocations, File& file, const std::string& path) {
        largeAllocationsLeft = allocations;
        const ResultCode result = file.ReadFile(path);
        largeAllocationsLeft = unlimited;
        return result;
    }
};

TEST_F(AllocationFailure, LeavesTheRawFileEmpty) {
    const std::string path = m_directory.write("image.bin", std::string(262144, 'x'));
    NSTargetFile file;
    for (const std::size_t allocations : {0U, 1U}) {
        ASSERT_EQ(readWith(2, file, path), RESULT_OK);
        EXPECT_EQ(readWith(allocations, file, path), RESULT_FILE_READ_FAILED) << allocations;
        EXPECT_EQ(file.GetProgramMemory(), nullptr);
        EXPECT_EQ(file.GetProgramMemorySize(), 0U);
    }
}

// The first pass's buffer, the code image, the data image, the second pass's buffer.
TEST_F(AllocationFailure, LeavesTheSRecordFileEmpty) {
    const std::string path =
        write(motLine(2, 0x1000, counting(4)) + "\n" + motLine(2, 0xF1000, counting(4)));
    for (const std::size_t allocations : {0U, 1U, 2U, 3U}) {
        ASSERT_EQ(readWith(4, m_file, path), RESULT_OK);
        EXPECT_EQ(readWith(allocations, m_file, path), RESULT_FILE_READ_FAILED) << allocations;
        expectEmpty();
    }
}

// An address costs ten characters of a file: it must not cost the machine its memory.
TEST_F(AllocationFailure, IsNotBroughtAboutByALyingAddress) {
    const std::string path = write(m_good + motLine(3, 0xFFFFFFEF, counting(16)));
    largestAllocation = 0;
    EXPECT_EQ(m_file.ReadFile(path), RESULT_OK);
    EXPECT_EQ(largestAllocation, 0x1000000U);
}

TEST_F(AllocationFailure, LeavesTheExtentsWhenMeasuringLacksMemory) {
    load();
    const std::string path = write(motLine(1, 0x10, counting(4)));
    largeAllocationsLeft = 0;
    EXPECT_EQ(m_file.MotFileSize(path), RESULT_FILE_READ_FAILED);
    largeAllocationsLeft = unlimited;
    EXPECT_EQ(program(), counting(4));
}

} // namespace
} // namespace flashwriter
