// An adapter that takes no more bytes, as one that has crashed or waits for a line that nobody
// raises. The kernel keeps what was written for the adapter, and what waits for that to go out
// waits long: closing the port half a minute, other requests for ever.
#include "tests/kernel/runs/KernelFixture.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <thread>

namespace flashwriter::kernel {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using testing::ImageFile;
using testing::patternImage;

// Nothing tells this adapter from a board that keeps silent, but the advice has to help with both.
const char* const REMEDY = "plug the adapter in again.";

const char* const FAILED_LOG = "## Write Failed\nThe writing processing failed\nERROR:0x";

// Two attempts at programming mode take the program some 5 s; the kernel alone would hold it for
// ever before a BREAK, and for half a minute at its end.
constexpr std::chrono::seconds BOUND{10};

class Stuck : public KernelFixture {
protected:
    // Writes on an adapter with this fault.
    std::unique_ptr<GuestProcess> beginWrite(const std::string& fault) {
        m_board.faults = {board::parseFault(fault)};
        plugIn();
        return flashwrite("500000", m_file.path());
    }
    static void expectFailsSoon(GuestProcess& program, const std::string& what) {
        EXPECT_EQ(program.wait(), 1) << program.output() << story();
        EXPECT_LT(program.took(), BOUND);
        EXPECT_THAT(program.output(), AllOf(HasSubstr(FAILED_LOG), HasSubstr(REMEDY)));
        EXPECT_TRUE(hasHappened("takes no more bytes")) << story();
        std::cout << what << ": the write ended after " << program.took().count() << " ms\n";
    }
    static bool awaitRecord(const std::string& what) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!hasHappened(what) && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return hasHappened(what);
    }

    const std::vector<std::uint8_t> m_image = patternImage(600);
    const ImageFile m_file{"image.bin", m_image};
};

// With room for a few bytes of the frame, too, of which the board hears nothing.
TEST_F(Stuck, AmidAWriteEndsAndSaysSoAndAnotherAdapterIsWritten) {
    expectFailsSoon(*beginWrite("stuck@8"), "stuck amid a write");
    unplug();
    expectFailsSoon(*beginWrite("stuck:100@9"), "stuck amid a frame");
    unplug();
    m_board.faults = {};
    plugIn();
    writeAndReadBack("500000", m_file.path(), m_image);
}

// The zero byte of mode entry waits in the kernel when the signal comes; the next attempt is left
// to end by itself.
TEST_F(Stuck, FromTheFirstFrameOnDiesOfAnInterruptAndEndsAndSaysSo) {
    const auto program = beginWrite("stuck@1");
    ASSERT_TRUE(awaitRecord("DTR off")) << story();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    program->signal(SIGINT);
    EXPECT_EQ(program->wait(), 128 + SIGINT) << program->output() << story();
    EXPECT_LT(program->took(), std::chrono::seconds(2));
    expectFailsSoon(*flashwrite("500000", m_file.path()), "stuck from the beginning");
    EXPECT_EQ(adapter().closings(), 2U) << story();
}

} // namespace
} // namespace flashwriter::kernel
