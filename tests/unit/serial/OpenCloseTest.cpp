#include "serial/NSSerialPortProcessor.h"
#include "tests/support/DescriptorZero.h"
#include "tests/support/Eventually.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/FailingThread.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SerialRequests.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <linux/serial.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

namespace flashwriter {
namespace {

using testing::DescriptorZero;
using testing::eventually;
using testing::PseudoTerminal;
using testing::SerialRequests;

termios attributesOf(const PseudoTerminal& terminal) {
    termios attributes{};
    EXPECT_EQ(::tcgetattr(terminal.master(), &attributes), 0);
    return attributes;
}

void setAttributes(const PseudoTerminal& terminal, const termios& attributes) {
    EXPECT_EQ(::tcsetattr(terminal.master(), TCSANOW, &attributes), 0);
}

std::size_t openDescriptors() {
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

TEST(Open, SetsTheLineForProgramming) {
    PseudoTerminal terminal;
    NSSerialPortProcessor port;
    ASSERT_EQ(port.Open(terminal.portPath()), RESULT_OK);
    const termios set = attributesOf(terminal);
    EXPECT_EQ(set.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
    EXPECT_NE(set.c_cflag & CSTOPB, 0U);
    EXPECT_NE(set.c_iflag & IGNPAR, 0U);
    EXPECT_EQ(::cfgetospeed(&set), static_cast<speed_t>(B115200));
    EXPECT_EQ(::cfgetispeed(&set), static_cast<speed_t>(B115200));
}

// A pseudo-terminal knows neither parity nor other character sizes, so these are a driver's.
TEST(Open, ClearsParityAndOtherCharacterSizes) {
    SerialRequests requests;
    requests.attributesReported.emplace();
    requests.attributesReported->c_cflag = CS7 | PARENB | PARODD | CREAD | HUPCL;
    PseudoTerminal terminal;
    NSSerialPortProcessor port;
    ASSERT_EQ(port.Open(terminal.portPath()), RESULT_OK);
    ASSERT_TRUE(requests.attributesWritten.has_value());
    EXPECT_EQ(requests.attributesWritten->c_cflag & ~static_cast<tcflag_t>(CBAUD),
              static_cast<tcflag_t>(CS8 | CSTOPB | PARODD | CREAD | HUPCL));
}

TEST(Open, TakesAPortOutOfTheKernelsDefaults) {
    PseudoTerminal terminal;
    ASSERT_NE(attributesOf(terminal).c_lflag & ICANON, 0U);
    NSSerialPortProcessor port;
    ASSERT_EQ(port.Open(terminal.portPath()), RESULT_OK);
    const termios set = attributesOf(terminal);
    EXPECT_EQ(set.c_lflag & (ICANON | ECHO | ISIG | IEXTEN), 0U);
    EXPECT_EQ(set.c_iflag & (ICRNL | INLCR | IGNCR | IXON | ISTRIP), 0U);
    EXPECT_EQ(set.c_oflag & OPOST, 0U);
}

TEST(Open, LeavesAllElseOfANonCanonicalPortAsItIs) {
    PseudoTerminal terminal;
    terminal.makeRaw();
    termios own = attributesOf(terminal);
    own.c_lflag |= ECHO | ISIG;
    own.c_iflag |= IXON | INLCR;
    own.c_oflag |= OPOST;
    own.c_cc[VMIN] = 7;
    own.c_cc[VTIME] = 3;
    setAttributes(terminal, own);
    NSSerialPortProcessor port;
    ASSERT_EQ(port.Open(terminal.portPath()), RESULT_OK);
    const termios set = attributesOf(terminal);
    EXPECT_EQ(set.c_lflag, own.c_lflag);
    EXPECT_EQ(set.c_iflag, own.c_iflag | IGNPAR);
    EXPECT_EQ(set.c_oflag, own.c_oflag);
    EXPECT_EQ(set.c_cc[VMIN], 7);
    EXPECT_EQ(set.c_cc[VTIME], 3);
}

TEST(Open, AsksForLowLatencyAndForgetsARefusal) {
    for (const int result : {0, -1}) {
        SerialRequests requests;
        requests.plan = {{TIOCGSERIAL, 0}, {TIOCSSERIAL, result}};
        requests.serialFlags = 0x40;
        PseudoTerminal terminal;
        NSSerialPortProcessor port;
        EXPECT_EQ(port.Open(terminal.portPath()), RESULT_OK);
        EXPECT_EQ(requests.serialFlagsRequested, 0x40 | ASYNC_LOW_LATENCY);
    }
}

TEST(OpenForMonitor, LeavesTheStopBitsAsTheDeviceHadThem) {
    for (const tcflag_t stopBits : {tcflag_t{0}, tcflag_t{CSTOPB}}) {
        PseudoTerminal terminal;
        terminal.makeRaw();
        termios own = attributesOf(terminal);
        own.c_cflag = (own.c_cflag & ~static_cast<tcflag_t>(CSTOPB)) | stopBits;
        setAttributes(terminal, own);
        NSSerialPortProcessor port;
        ASSERT_EQ(port.OpenForMonitor(terminal.portPath(), 9600), RESULT_OK);
        const termios set = attributesOf(terminal);
        EXPECT_EQ(set.c_cflag & CSTOPB, stopBits);
        EXPECT_EQ(set.c_cflag & (CSIZE | PARENB), static_cast<tcflag_t>(CS8));
    }
}

TEST(OpenForMonitor, ARateThatTheDeviceCannotTakeLeavesThePortOpen) {
    SerialRequests requests;
    requests.rateAfterChange = 9600;
    PseudoTerminal terminal;
    NSSerialPortProcessor port;
    EXPECT_EQ(port.OpenForMonitor(terminal.portPath(), 4000000), RESULT_BAUD_RATE_CHANGE_FAILED);
    EXPECT_TRUE(eventually([&] { return requests.discards == 1; })) << "the thread has begun";
    EXPECT_TRUE(port.IsReading());
    terminal.send({'h', 'i'});
    EXPECT_TRUE(eventually([&] { return port.GetReceiveDataLength() == 2; }));
}

TEST(Open, WhatIsNotThereOrNotADeviceIsAnOpenError) {
    const std::filesystem::path file =
        std::filesystem::path(::testing::TempDir()) / "not-a-port.bin";
    std::ofstream(file) << "precious";
    for (const std::string& path : {std::string("/dev/there-is-no-such-port"), std::string(""),
                                    ::testing::TempDir(), file.string()}) {
        NSSerialPortProcessor port;
        EXPECT_EQ(port.Open(path.c_str()), RESULT_PORT_OPEN_ERROR) << path;
        EXPECT_FALSE(port.IsReading());
        EXPECT_EQ(port.OpenForMonitor(path.c_str(), 9600), RESULT_PORT_OPEN_ERROR) << path;
        EXPECT_EQ(port.ChangeBaudRate(9600), RESULT_BAUD_RATE_CHANGE_FAILED);
    }
    std::ifstream again(file);
    std::string content;
    again >> content;
    EXPECT_EQ(content, "precious");
    std::filesystem::remove(file);
}

TEST(Open, WithoutMemoryClosesADescriptorStillRecorded) {
    const DescriptorZero zero;
    PseudoTerminal terminal;
    NSSerialPortProcessor port; // its descriptor starts at 0
    testing::failingAllocation.size = 1024;
    EXPECT_EQ(port.Open(terminal.portPath()), RESULT_INIT_FAILED);
    EXPECT_FALSE(DescriptorZero::isOpen());
    EXPECT_EQ(port.OpenForMonitor(terminal.portPath(), 9600), RESULT_INIT_FAILED);
    testing::failingAllocation = {};
    EXPECT_EQ(port.Open(terminal.portPath()), RESULT_OK);
}

TEST(Open, WithoutAThreadClosesTheDevice) {
    const PseudoTerminal terminal;
    NSSerialPortProcessor port;
    const std::size_t before = openDescriptors();
    testing::failThreadCreation = true;
    EXPECT_EQ(port.Open(terminal.portPath()), RESULT_INIT_FAILED);
    EXPECT_EQ(port.OpenForMonitor(terminal.portPath(), 9600), RESULT_INIT_FAILED);
    testing::failThreadCreation = false;
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(port.Open(terminal.portPath()), RESULT_OK);
}

// What a driver says while its adapter takes no bytes: in its own queue, or in the chip's.
TEST(Close, IsNotHeldUpByOutputThatStays) {
    for (const bool inTheChip : {false, true}) {
        PseudoTerminal terminal;
        SerialRequests requests;
        const std::size_t before = openDescriptors();
        NSSerialPortProcessor port;
        ASSERT_EQ(port.Open(terminal.portPath()), RESULT_OK);
        requests.plan = {{TIOCOUTQ, 0}, {TIOCSERGETLSR, 0}};
        requests.pendingOutput = inTheChip ? 0 : 1;
        requests.chipIsEmpty = !inTheChip;
        requests.closesHeld = true;
        port.Close();
        EXPECT_EQ(openDescriptors(), before);
    }
}

// Whoever calls may have blocked the signal that ends the system's wait.
TEST(Close, IsNotHeldUpUnderTheCallersSignalMask) {
    PseudoTerminal terminal;
    SerialRequests requests;
    NSSerialPortProcessor port;
    ASSERT_EQ(port.Open(terminal.portPath()), RESULT_OK);
    requests.plan = {{TIOCOUTQ, 0}};
    requests.pendingOutput = 1;
    requests.closesHeld = true;
    std::atomic<bool> isClosed{false};
    std::thread caller([&] {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
        port.Close();
        isClosed = true;
    });
    EXPECT_TRUE(eventually([&] { return isClosed.load(); }));
    requests.closesHeld = false;
    caller.join();
}

TEST(Close, IsMadeHereWhenThereIsNoOtherThread) {
    PseudoTerminal terminal;
    SerialRequests requests;
    const std::size_t before = openDescriptors();
    NSSerialPortProcessor port;
    ASSERT_EQ(port.Open(terminal.portPath()), RESULT_OK);
    requests.plan = {{TIOCOUTQ, 0}};
    requests.pendingOutput = 1;
    testing::failThreadCreation = true;
    port.Close();
    testing::failThreadCreation = false;
    EXPECT_EQ(openDescriptors(), before);
}

TEST(Close, OfATransportThatWasNeverOpenedClosesDescriptorZeroOnce) {
    const DescriptorZero zero;
    NSSerialPortProcessor port;
    port.Close();
    EXPECT_FALSE(DescriptorZero::isOpen());
    ASSERT_EQ(::open("/dev/null", O_RDONLY), 0);
    port.Close();
    EXPECT_TRUE(DescriptorZero::isOpen());
}

TEST(Close, EndsTheReceiveThreadAndLetsThePortBeOpenedAgain) {
    const PseudoTerminal terminal;
    terminal.makeRaw();
    NSSerialPortProcessor port;
    const std::size_t before = openDescriptors();
    for (int round = 0; round < 20; ++round) {
        ASSERT_EQ(port.Open(terminal.portPath()), RESULT_OK);
        ASSERT_TRUE(eventually([&] { return port.IsReading(); }));
        port.Close();
        EXPECT_FALSE(port.IsReading());
        EXPECT_EQ(openDescriptors(), before);
    }
}

TEST(Close, NeverLeavesAThreadBehindThatHasNotBegunYet) {
    const PseudoTerminal terminal;
    terminal.makeRaw();
    for (int round = 0; round < 500; ++round) {
        NSSerialPortProcessor port;
        ASSERT_EQ(port.Open(terminal.portPath()), RESULT_OK);
        if (round % 2 == 0) {
            port.Close();
        }
        // Otherwise the destructor: the thread may come to life after either.
    }
}

TEST(Open, OfATransportThatIsOpenLosesNeitherDescriptorNorThread) {
    const SerialRequests requests;
    const PseudoTerminal first;
    const PseudoTerminal second;
    const std::size_t before = openDescriptors();
    {
        NSSerialPortProcessor port;
        ASSERT_EQ(port.Open(first.portPath()), RESULT_OK);
        ASSERT_TRUE(eventually([&] { return requests.discards == 1; }));
        ASSERT_EQ(port.Open(second.portPath()), RESULT_OK);
        ASSERT_TRUE(eventually([&] { return requests.discards == 2; }));
        second.send({1, 2, 3});
        EXPECT_TRUE(eventually([&] { return port.GetReceiveDataLength() == 3; }));
    }
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
} // namespace flashwriter
