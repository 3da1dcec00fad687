// The board on its pseudo-terminal, as a host meets it.

#include "board/VirtualBoard.h"
#include "HostSide.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <unistd.h>

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

constexpr auto kPatience = 20s; // a guard against hanging, not a measure

BoardOptions unpacedWith(const char* fault) {
    BoardOptions options = unpaced();
    options.faults = {parseFault(fault)};
    return options;
}

std::size_t openDescriptors() {
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

TEST(VirtualBoard, WorksWithTheInvertedSense) {
    BoardOptions options = unpaced();
    options.target.invertedDtr = true;
    VirtualBoard board;
    board.start(options);
    const HostSide host(board.portPath());
    EXPECT_TRUE(board.waitForMode(TargetMode::running, kPatience)); // opening raised DTR
    EXPECT_TRUE(host.connect(0, true));
    EXPECT_EQ(board.violations(), 0U);
}

TEST(VirtualBoard, EverySpeedWorks) {
    for (const std::uint8_t index : Bytes{0, 1, 2, 3}) {
        VirtualBoard board;
        board.start(unpaced());
        const HostSide host(board.portPath());
        EXPECT_TRUE(host.connect(index)) << int{index};
    }
}

TEST(VirtualBoard, AHostThatKeepsTheOldSpeedHearsNothing) {
    VirtualBoard board;
    board.start(unpaced());
    const HostSide host(board.portPath());
    host.enterProgrammingMode();
    ASSERT_EQ(host.exchange(commandFrame({0x9A, 2, 33}), 5), kAcknowledged);
    host.send(kResetFrame);
    EXPECT_EQ(host.receive(1, 100ms), Bytes{});
    host.setSpeed(kSpeeds[2]);
    EXPECT_EQ(host.exchange(kResetFrame, 5), kAcknowledged);
}

TEST(VirtualBoard, OpeningRaisesDtrAndClosingDropsIt) {
    VirtualBoard board;
    board.start(unpaced());
    EXPECT_EQ(board.mode(), TargetMode::running);
    HostSide host(board.portPath());
    EXPECT_TRUE(board.waitForMode(TargetMode::inReset, kPatience));
    EXPECT_EQ(host.modemLines(), TIOCM_DTR | TIOCM_RTS);
    {
        const HostSide second(board.portPath());
        EXPECT_EQ(second.modemLines(), TIOCM_DTR | TIOCM_RTS);
    }
    EXPECT_EQ(host.modemLines(), TIOCM_DTR | TIOCM_RTS); // one descriptor is still open
    EXPECT_EQ(board.closings(), 0U);
    host.close();
    EXPECT_TRUE(board.waitForClosings(1, kPatience));
    EXPECT_TRUE(board.waitForMode(TargetMode::running, kPatience));
    for (std::uint32_t count = 2; count < 20; ++count) {
        HostSide(board.portPath()).close();
        EXPECT_TRUE(board.waitForClosings(count, kPatience));
    }
}

TEST(VirtualBoard, LinesArriveBeforeTheRequestReturns) {
    VirtualBoard board;
    board.start(unpaced());
    const HostSide host(board.portPath());
    for (int i = 0; i < 100; ++i) {
        host.setDtr(true);
        EXPECT_EQ(board.mode(), TargetMode::inReset);
        host.setDtr(false);
        EXPECT_EQ(board.mode(), TargetMode::running);
    }
}

TEST(VirtualBoard, SeveralBoardsHaveEachTheirLines) {
    VirtualBoard one;
    VirtualBoard other;
    one.start(unpaced());
    other.start(unpaced());
    const HostSide hostOfOne(one.portPath());
    const HostSide hostOfOther(other.portPath());
    hostOfOne.setDtr(false);
    hostOfOther.setDtr(true);
    EXPECT_EQ(one.mode(), TargetMode::running);
    EXPECT_EQ(other.mode(), TargetMode::inReset);
}

TEST(VirtualBoard, LineRequestsFailAsAsked) {
    VirtualBoard board;
    board.start(unpacedWith("fail-break:5@1"));
    const HostSide host(board.portPath());
    EXPECT_FALSE(host.setBreak(true));
    EXPECT_EQ(errno, 5);
    EXPECT_TRUE(host.setBreak(true));
}

TEST(VirtualBoard, TheRunningProgramSpeaksAtItsOwnSpeed) {
    BoardOptions options = unpaced();
    options.target.monitor = {.text = "hello", .interval = 10ms, .bitsPerSecond = 9600};
    VirtualBoard board;
    board.start(options);
    const HostSide host(board.portPath());
    host.setSpeed(9600);
    host.setDtr(false);
    EXPECT_EQ(host.receive(5), (Bytes{'h', 'e', 'l', 'l', 'o'}));
}

TEST(VirtualBoard, AtAnotherSpeedItsTextIsNoise) {
    BoardOptions options = unpaced();
    options.target.monitor = {.text = "hello", .interval = 10ms, .bitsPerSecond = 9600};
    VirtualBoard board;
    board.start(options);
    const HostSide host(board.portPath());
    host.setDtr(false);
    const Bytes noise = host.receive(5);
    ASSERT_EQ(noise.size(), 5U);
    EXPECT_EQ(std::count(noise.begin(), noise.end(), 'l'), 0);
}

TEST(VirtualBoard, UnpluggingTakesThePortAway) {
    VirtualBoard board;
    board.start(unpacedWith("unplug-reply:2@2"));
    const HostSide host(board.portPath());
    host.enterProgrammingMode();
    ASSERT_EQ(host.exchange(commandFrame({0x9A, 0, 33}), 5), kAcknowledged);
    host.send(kResetFrame);
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!board.unplugged() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(1ms);
    }
    ASSERT_TRUE(board.unplugged());
    while (host.send(kResetFrame) >= 0 && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(1ms); // the port goes a moment after the board says so
    }
    EXPECT_EQ(errno, EIO);
    EXPECT_FALSE(host.setDtr(true));
    EXPECT_FALSE(std::filesystem::exists(board.portPath()));
}

TEST(VirtualBoard, AStuckBoardLeavesRoomForAFewBytesOnly) {
    VirtualBoard board;
    board.start(unpacedWith("stuck:3@2"));
    const HostSide host(board.portPath());
    host.enterProgrammingMode();
    ASSERT_EQ(host.exchange(commandFrame({0x9A, 0, 33}), 5), kAcknowledged);
    EXPECT_EQ(host.send(kResetFrame), 3);
    EXPECT_EQ(host.send(kResetFrame), -1);
    EXPECT_EQ(host.receive(1, 50ms), Bytes{});
}

TEST(VirtualBoard, PacedBytesTakeAtLeastTheirTimeOnTheWire) {
    VirtualBoard board;
    board.start();
    const HostSide host(board.portPath());
    ASSERT_TRUE(host.connect(0));
    const auto before = std::chrono::steady_clock::now();
    const int exchanges = 50;
    for (int i = 0; i < exchanges; ++i) {
        ASSERT_EQ(host.exchange(kResetFrame, 5), kAcknowledged);
    }
    // 10 bytes of 11 bits each time, at 115200 bits per second.
    EXPECT_GE(std::chrono::steady_clock::now() - before, exchanges * 954us);
    EXPECT_EQ(board.violations(), 0U);
    for (const TranscriptRecord& record : board.transcript()) {
        if (record.kind == TranscriptRecord::Kind::reply) {
            EXPECT_GE(record.written, record.due);
        }
    }
}

TEST(VirtualBoard, SleepsWhileThereIsNothingToDo) {
    VirtualBoard board;
    board.start(unpaced());
    const HostSide host(board.portPath());
    host.setDtr(true);
    timespec before{};
    timespec after{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &before);
    std::this_thread::sleep_for(300ms);
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &after);
    const auto used = std::chrono::seconds(after.tv_sec - before.tv_sec) +
                      std::chrono::nanoseconds(after.tv_nsec - before.tv_nsec);
    EXPECT_LT(used, 150ms); // a thread that spins would use all of it
}

TEST(VirtualBoard, KeepsWhatCanBeAskedForAfterStopping) {
    VirtualBoard board;
    EXPECT_THROW(static_cast<void>(board.portPath()), std::logic_error);
    board.start(unpaced());
    {
        const HostSide host(board.portPath());
        ASSERT_TRUE(host.connect(0));
        ASSERT_EQ(program(host, pattern(1024)), kAcknowledged);
    }
    ASSERT_TRUE(board.waitForClosings(1, kPatience));
    EXPECT_EQ(board.sessions(), 1U);
    board.stop();
    board.stop();
    EXPECT_EQ(board.codeFlash()[1], 7);
    EXPECT_FALSE(board.transcript().empty());
    board.start(unpaced());
    EXPECT_EQ(board.codeFlash()[1], 0xFF);
}

TEST(VirtualBoard, LeavesNoDescriptorBehind) {
    const std::size_t before = openDescriptors();
    for (int i = 0; i < 10; ++i) {
        VirtualBoard board;
        board.start(unpaced());
        HostSide host(board.portPath());
        host.setDtr(i % 2 == 0);
        if (i % 3 == 0) {
            host.connect(0);
        }
        if (i % 4 == 0) {
            board.stop(); // while the host has the port open
            EXPECT_FALSE(host.setDtr(true));
        }
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(VirtualBoard, GoesAwayAtAnyMoment) {
    for (int i = 0; i < 30; ++i) {
        VirtualBoard board;
        board.start(unpaced());
        std::thread host([path = board.portPath()] {
            const HostSide side(path);
            side.send(Bytes(200, 0x01));
            side.setDtr(false);
            side.send(Bytes(200, 0x02));
        });
        std::this_thread::sleep_for(i * 20us);
        host.join();
    }
}

TEST(VirtualBoard, OtherDevicesAreLeftToTheSystem) {
    int bits = 0;
    const int counter = eventfd(0, EFD_CLOEXEC);
    EXPECT_EQ(ioctl(counter, TIOCMGET, &bits), -1);
    EXPECT_EQ(errno, ENOTTY);
    ::close(counter);
}

} // namespace
} // namespace flashwriter::board
