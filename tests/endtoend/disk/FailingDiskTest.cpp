// The command, when the disk that the image lies on fails in the middle of it, at each read by
// turns: nothing is written, and the person is told what to do.
#include "board/VirtualBoard.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ImageFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace flashwriter::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t SIZE = 3000;
constexpr std::size_t PIECE = 1000;

class FailingDiskWrite : public ::testing::Test {
protected:
    FailingDiskWrite() {
        board::BoardOptions options;
        options.pace = false;
        options.target.flash.codeKib = 16;
        m_board.start(options);
    }

    // Writes the file when its n-th read fails; true when there were fewer, and it was written.
    bool isWritten(const ImageFile& file, int n, const std::string& disk) {
        SCOPED_TRACE(file.path() + ", read " + std::to_string(n));
        const Bytes before = m_board.codeFlash();
        ChildOptions options;
        options.arguments = {FLASHWRITE, m_board.portPath(), "500000", file.path()};
        options.environment = {"LD_PRELOAD=" FAILING_READS_PRELOAD ":" LINES_PRELOAD,
                               "FAILING_READ=" + std::to_string(n),
                               "READ_PIECE=" + std::to_string(PIECE), disk};
        ChildProcess program(options);
        if (program.wait() == 0) {
            EXPECT_TRUE(m_board.codeFlash() == flashAfter(m_image, before));
            return true;
        }
        EXPECT_EQ(program.wait(), 1);
        EXPECT_TRUE(m_board.codeFlash() == before);
        EXPECT_THAT(program.output(), HasSubstr("ERROR:0x00003003\n"));
        EXPECT_THAT(program.output(), Not(HasSubstr("succeeded")));
        m_output = program.output();
        return false;
    }

    // Returns how many reads there were.
    template <class Check>
    int failEachRead(const ImageFile& file, const std::string& disk, const Check& check) {
        int n = 1;
        while (n < 100 && !isWritten(file, n, disk)) {
            check();
            ++n;
        }
        return n - 1;
    }

    const Bytes m_image = patternImage(SIZE);
    const ImageFile m_raw{"image.bin", m_image};
    const ImageFile m_records{"image.mot", motText(m_image)};
    // Each read of a whole file ends with one that finds the end.
    const int m_rawReads = static_cast<int>(SIZE / PIECE) + 1;
    const int m_recordReads = 2 * (static_cast<int>(motText(m_image).size() / PIECE) + 2);
    std::string m_output; // of the last run
    board::VirtualBoard m_board;
};

TEST_F(FailingDiskWrite, ThatStaysBroken) {
    const auto check = [this] {
        EXPECT_THAT(m_output, HasSubstr(" could not be read to its end: Input/output error. Its "
                                        "disk may be failing: "));
    };
    EXPECT_EQ(failEachRead(m_raw, "DISK_STAYS_BROKEN=1", check), m_rawReads);
    EXPECT_EQ(failEachRead(m_records, "DISK_STAYS_BROKEN=1", check), m_recordReads);
}

TEST_F(FailingDiskWrite, ThatCanBeReadAgain) {
    const auto check = [this] { EXPECT_THAT(m_output, HasSubstr("another disk")); };
    EXPECT_EQ(failEachRead(m_raw, "", check), m_rawReads);
    EXPECT_EQ(failEachRead(m_records, "", check), m_recordReads);
}

} // namespace
} // namespace flashwriter::testing
