// An adapter that takes no more bytes, as one that has crashed or waits for a line that nobody
// raises. The kernel keeps what was written for the adapter, and what waits for that to go out
// waits long: closing the port half a minute, other requests for ever.
#include "tests/kernel/runs/KernelFixture.h"

#include <gmock/gmock.h>

#include <chrono>
#include <iostream>

namespace flashwriter::kernel {
namespace {

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

    std::chrono::steady_clock::time_point m_begin;
    const ImageFile m_file{"image.bin", patternImage(600)};
};

const char* const FAILED_LOG = "## Write Failed\nThe writing processing failed\nERROR:0x";

// The program itself takes a few seconds; the rest of it is the kernel closing the port.
TEST_F(Stuck, FromTheFirstFrameOnEndsAndSaysSo) {
    const auto program = beginWrite("1");
    EXPECT_EQ(program->wait(std::chrono::seconds(50)), 1) << program->output() << story();
    EXPECT_THAT(program->output(), HasSubstr(FAILED_LOG));
    std::cout << "the write on the stuck adapter ended after " << secondsSinceBegin() << " s\n";
}

// The driver of CDC adapters stops waiting when its adapter goes, the other one does not.
TEST_F(Stuck, AmidAWriteEndsAndSaysSoWhenItIsUnplugged) {
    const auto program = beginWrite("8");
    EXPECT_EQ(program->wait(std::chrono::seconds(8)), std::nullopt) << "the port closed at once";
    adapter().unplug();
    EXPECT_EQ(program->wait(std::chrono::seconds(isFtdi() ? 40 : 8)), 1)
        << program->output() << story();
    EXPECT_THAT(program->output(), HasSubstr(FAILED_LOG));
    std::cout << "with the adapter unplugged the write ended after " << secondsSinceBegin()
              << " s\n";
}

} // namespace
} // namespace flashwriter::kernel
