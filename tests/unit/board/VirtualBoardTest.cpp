// The board on its pseudo-terminal, as a host meets it.

#include "board/VirtualBoard.h"
#include "HostSide.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <thread>

#include <gtest/gtest.h>
#include <sys/ioctl.h>

namespace flashwriter::board {
namespace {

using namespace std::chrono_literals;

BoardOptions unpaced() {
    BoardOptions options;
    options.pace = false;
    return options;
}

Bytes pattern(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<std::uint8_t>((i * 7 + i / 256) & 0xFFU);
    }
    return bytes;
}

// Programs the image, whole blocks, from address 0 on. The status of the internal verify.
Bytes program(const HostSide& host, const Bytes& image) {
    const auto last = static_cast<std::uint32_t>(image.size() - 1);
    EXPECT_EQ(host.exchange(commandFrame(withAddress(withAddress({0x40}, 0), last)), 5),
              kAcknowledged);
    for (std::size_t at = 0; at < image.size(); at += 256) {
        const auto begin = image.begin() + static_cast<std::ptrdiff_t>(at);
        const Bytes frame = dataFrame(Bytes(begin, begin + 256), at + 256 == image.size());
        EXPECT_EQ(host.exchange(frame, 6), kDataAcknowledged);
    }
    return host.receive(5);
}

TEST(VirtualBoard, TakesAWholeWrite) {
    VirtualBoard board;
    board.start(unpaced());
    const HostSide host(board.portPath());
    ASSERT_TRUE(host.connect(2));
    const Bytes image = pattern(2048);
    EXPECT_EQ(program(host, image), kAcknowledged);
    const Bytes flash = board.codeFlash();
    EXPECT_TRUE(std::equal(image.begin(), image.end(), flash.begin()));
    EXPECT_EQ(flash[2048], 0xFF);
    EXPECT_EQ(board.violations(), 0U) << transcriptText(board.transcript());
}

} // namespace
} // namespace flashwriter::board
