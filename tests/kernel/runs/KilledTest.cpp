// A write that is killed, and the one after it.
#include "tests/kernel/runs/KernelFixture.h"

#include <csignal>

namespace flashwriter::kernel {
namespace {

using board::TargetMode;
using testing::ImageFile;
using testing::patternImage;

class Killed : public KernelFixture {
protected:
    const std::vector<std::uint8_t> m_image = patternImage(5000);
    const ImageFile m_file{"image.bin", m_image};
};

TEST_F(Killed, InMidWriteIsMendedByTheNext) {
    plugIn();
    std::unique_ptr<GuestProcess> program;
    untilNotHeldUp([&] {
        program = flashwrite("115200", m_file.path());
        return adapter().waitForMode(TargetMode::receiving, std::chrono::seconds(5));
    });
    ASSERT_EQ(adapter().mode(), TargetMode::receiving) << story();
    const std::uint32_t closings = adapter().closings();
    program->signal(SIGKILL);
    EXPECT_EQ(program->wait(), 128 + SIGKILL);
    // What the system has in hand still goes out, then the lines are dropped.
    EXPECT_TRUE(adapter().waitForClosings(closings + 1, std::chrono::seconds(20))) << story();
    writeAndReadBack("115200", m_file.path(), m_image);
}

// The driver of CDC adapters leaves BREAK on when a program dies in it.
TEST_F(Killed, DuringBreakIsMendedByTheNext) {
    plugIn();
    const auto program =
        flashwrite("115200", m_file.path(),
                   {std::string("LD_PRELOAD=") + PORT_CALLS, "PORT_CALLS=die-in-break"});
    EXPECT_EQ(program->wait(), 128 + SIGKILL) << story();
    EXPECT_TRUE(adapter().waitForClosings(1, std::chrono::seconds(20))) << story();
    EXPECT_TRUE(hasHappened("BREAK on")) << story();
    EXPECT_TRUE(isFtdi() || !hasHappened("BREAK off")) << story();
    writeAndReadBack("115200", m_file.path(), m_image);
}

} // namespace
} // namespace flashwriter::kernel
