// The board behind a simulated device keeps and drops bytes as a system's serial driver does.
#include "tests/simulation/BoardPort.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <string>
#include <sys/ioctl.h>

namespace flashwriter::simulation {
namespace {

using board::Fault;
using board::FaultKind;
using std::chrono::milliseconds;

constexpr VirtualTime START{};

class BoardBehindAPort : public ::testing::Test {
protected:
    // A running program that says "hello" once, as soon as DTR lets it go.
    void letItSpeak(BoardPort& port) {
        port.open(START);
        port.lines({board::LineOperation::set, 0}, START);
        port.advance(milliseconds(50));
    }
    BoardBehindAPort() {
        m_options.target.monitor.text = "hello";
        m_options.target.monitor.interval = VirtualTime::zero();
    }

    board::BoardOptions m_options;
    std::array<std::uint8_t, 8> m_bytes{};
};

TEST_F(BoardBehindAPort, GivesWhatHasArrivedPieceByPiece) {
    BoardPort port(m_options);
    letItSpeak(port);
    EXPECT_EQ(port.take(m_bytes.data(), 3), 3U);
    EXPECT_EQ(std::string(m_bytes.begin(), m_bytes.begin() + 3), "hel");
    EXPECT_EQ(port.take(m_bytes.data(), 8), 2U);
    EXPECT_FALSE(port.hasArrived());
}

TEST_F(BoardBehindAPort, DiscardsWhatHasArrived) {
    BoardPort port(m_options);
    letItSpeak(port);
    EXPECT_TRUE(port.hasArrived());
    port.discard(milliseconds(50));
    EXPECT_FALSE(port.hasArrived());
    EXPECT_EQ(port.take(m_bytes.data(), 8), 0U);
}

TEST_F(BoardBehindAPort, HearsNothingYetBeforeItsTime) {
    BoardPort port(m_options);
    port.open(START);
    port.lines({board::LineOperation::set, 0}, START);
    port.advance(milliseconds(1)); // five bytes of 11 bits at 9600 bps take 5.7 ms
    EXPECT_FALSE(port.hasArrived());
}

TEST_F(BoardBehindAPort, TakesAFrameInPartWhenStuckUntilItsOutputIsDiscarded) {
    m_options.faults = {{FaultKind::stuck, 1, 3}};
    BoardPort port(m_options);
    port.open(START);
    EXPECT_EQ(port.write(m_bytes, START), 3);
    EXPECT_EQ(port.write(m_bytes, START), -EAGAIN);
    port.discard(START);
    EXPECT_EQ(port.write(m_bytes, START), 8) << "the system has room again";
    port.discard(START);
    EXPECT_EQ(port.transcriptText().find("<"), std::string::npos);
}

TEST_F(BoardBehindAPort, IsGoneOnceUnplugged) {
    m_options.faults = {{FaultKind::unplugFrame, 1, 1}};
    BoardPort port(m_options);
    port.open(START);
    port.lines({board::LineOperation::startBreak, 0}, START);
    port.lines({board::LineOperation::set, 0}, START);
    port.lines({board::LineOperation::endBreak, 0}, START);
    port.setSpeed(115200, START);
    const std::array<std::uint8_t, 3> zeroAndTwo{0x00, 0x01, 0x03};
    EXPECT_EQ(port.write(zeroAndTwo, START), 3);
    port.advance(milliseconds(5));
    EXPECT_EQ(port.write(m_bytes, milliseconds(5)), -EIO);
    EXPECT_EQ(port.lines({board::LineOperation::get, 0}, milliseconds(5)).error, EIO);
    EXPECT_EQ(port.setSpeed(9600, milliseconds(5)), EIO);
    port.close(milliseconds(6));
    EXPECT_EQ(port.open(milliseconds(7)), ENOENT);
}

} // namespace
} // namespace flashwriter::simulation
