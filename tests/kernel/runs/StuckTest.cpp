// An adapter that takes no more bytes, as one that has crashed or waits for a line that nobody
// raises. The kernel keeps what was written for the adapter, and what waits for that to go out
// waits long: closing the port half a minute, other requests for ever.
#include "tests/kernel/runs/KernelFixture.h"

#include <gmock/gmock.h>

#include <chrono>
#include <iostream>

namespace flashwriter::kernel {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using testing::ImageFile;
using testing::patternImage;

class Stuck : public KernelFixture {
protected:
    // Writes on an adapter that takes no frame from the n-th on.
    std::unique_ptr<GuestProcess> beginWrite(const std::string& n) {
        m_board.faults = {board::parseFault("stuck@" + n)};
        plugIn();
        m_begin = std::chrono::steady_clock::now();
        return flashwrite("500000", m_file.path());
    }
    double secondsSinceBegin() const {
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - m_begin;
        return time.count();
    }

    // Two attempts at programming mode take the program some 5 s.
    static constexpr std::chrono::milliseconds PATIENCE{20000};

    std::chrono::steady_clock::time_point m_begin;
    const std::vector<std::uint8_t> m_image = patternImage(600);
    const ImageFile m_file{"image.bin", m_image};
};

// Nothing tells this adapter from a board that keeps silent, but the advice has to help with both.
const char* const REMEDY = "plug the adapter in again.";

const char* const FAILED_LOG = "## Write Failed\nThe writing processing failed\nERROR:0x";

// The kernel alone would hold it for ever before a BREAK, and for half a minute at its end.
TEST_F(Stuck, FromTheFirstFrameOnEndsAndSaysSo) {
    const auto program = beginWrite("1");
    EXPECT_EQ(program->wait(PATIENCE), 1) << program->output() << story();
    EXPECT_THAT(program->output(), AllOf(HasSubstr(FAILED_LOG), HasSubstr(REMEDY)));
    std::cout << "stuck from the beginning: the write ended after " << secondsSinceBegin()
              << " s\n";
}

TEST_F(Stuck, AmidAWriteEndsAndSaysSoAndAnotherAdapterIsWritten) {
    const auto program = beginWrite("8");
    EXPECT_EQ(program->wait(PATIENCE), 1) << program->output() << story();
    EXPECT_THAT(program->output(), AllOf(HasSubstr(FAILED_LOG), HasSubstr(REMEDY)));
    std::cout << "stuck amid a write: it ended after " << secondsSinceBegin() << " s\n";
    unplug();
    m_board.faults = {};
    plugIn();
    writeAndReadBack("500000", m_file.path(), m_image);
}

} // namespace
} // namespace flashwriter::kernel
