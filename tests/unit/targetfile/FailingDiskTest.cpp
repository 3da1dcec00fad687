// A disk that fails in the middle of a file, at each read by turns.
#include "targetfile/FileFacts.h"
#include "targetfile/NSTargetFile.h"
#include "tests/support/FailingReads.h"
#include "tests/unit/targetfile/MotFixture.h"

#include <cerrno>

namespace flashwriter {
namespace {

using testing::reads;

constexpr std::size_t PIECE = 1000;

class FailingDisk : public MotFixture {
protected:
    ~FailingDisk() override { reads = {}; }

    // Reads with a number one greater each time, until one is greater than there are reads; returns
    // it. read() is to fail, but for the last time.
    template <class Read>
    static int failEachRead(const Read& read) {
        int number = 0;
        do {
            reads = {.most = PIECE, .failing = ++number, .made = 0};
            read(number);
        } while (reads.made >= number && number < 1000);
        return number;
    }
    static ResultCode expected(int number) {
        return reads.made < number ? RESULT_OK : RESULT_FILE_READ_FAILED;
    }
};

TEST_F(FailingDisk, LeavesTheRawFileEmpty) {
    const std::string image(10 * PIECE, 'x');
    const std::string path = m_directory.write("image.bin", image);
    NSTargetFile file;
    const int count = failEachRead([&](int number) {
        reads.failing = 0;
        ASSERT_EQ(file.ReadFile(path), RESULT_OK);
        reads = {.most = PIECE, .failing = number, .made = 0};
        const ResultCode result = file.ReadFile(path);
        EXPECT_EQ(result, expected(number)) << number;
        EXPECT_EQ(file.GetProgramMemory() != nullptr, result == RESULT_OK) << number;
        EXPECT_EQ(file.GetProgramMemorySize(), result == RESULT_OK ? image.size() : 0) << number;
    });
    EXPECT_EQ(count, 12) << "ten pieces, the end, and none that fails";
}

TEST_F(FailingDisk, LeavesTheSRecordFileEmpty) {
    std::string text;
    for (std::uint32_t i = 0; i < 200; ++i) {
        text += motLine(2, i * 32, counting(32)) + "\n";
    }
    const std::string path = write(text);
    int passes = 0;
    int failedInSecond = 0;
    m_betweenPasses = [&] { ++passes; };
    const int count = failEachRead([&](int number) {
        passes = 0;
        const ResultCode result = m_file.ReadFile(path);
        EXPECT_EQ(result, expected(number)) << number;
        if (result == RESULT_OK) {
            EXPECT_EQ(program().size(), 200U * 32);
        } else {
            expectEmpty();
            failedInSecond += passes;
        }
    });
    EXPECT_GT(count, 2 * static_cast<int>(text.size() / PIECE));
    EXPECT_EQ(failedInSecond, (count - 1) / 2) << "as many as in the first pass";
}

TEST_F(FailingDisk, LeavesTheExtentsWhenItIsMeasured) {
    load();
    const std::string path = write(motLine(1, 0x10, counting(4)) + std::string(5 * PIECE, '\n'));
    failEachRead([&](int number) {
        const ResultCode result = m_file.MotFileSize(path);
        EXPECT_EQ(result, expected(number)) << number;
        EXPECT_EQ(m_file.GetProgramMemorySize(), result == RESULT_OK ? 0x14U : 4U) << number;
    });
}

TEST_F(FailingDisk, IsFoundOut) {
    const std::string path = write(std::string(3 * 16384, 'x'));
    EXPECT_EQ(readError(path), 0);
    const int count = failEachRead([&](int number) {
        const int error = readError(path);
        EXPECT_EQ(error, reads.made < number ? 0 : EIO) << number;
    });
    EXPECT_GT(count, 3 * 16384 / static_cast<int>(PIECE));
    reads = {};
    EXPECT_EQ(readError(m_directory.path("missing")), ENOENT);
    EXPECT_EQ(readError(m_directory.path("")), EISDIR);
    EXPECT_EQ(readError("/dev/zero"), EINVAL);
}

// Nobody waits for all of a file that is very large.
TEST_F(FailingDisk, IsNotLookedForWithoutEnd) {
    const std::string path = write("");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 40U);
    EXPECT_EQ(readError(path), 0);
    EXPECT_LT(reads.made, 5000);
}

} // namespace
} // namespace flashwriter
