// The requests of the ftdi_sio driver, and the packets that it expects.

#include "tests/kernel/adapter/FtdiChip.h"
#include "DeviceHost.h"

#include <string>

#include <gtest/gtest.h>

namespace flashwriter::kernel {
namespace {

using board::commandFrame;
using board::kAcknowledged;
using board::TargetMode;

constexpr std::uint8_t kFtdiOut = 0x02;
constexpr std::uint16_t kReset = 0x4000;
constexpr std::uint16_t kModemControl = 0x4001;
constexpr std::uint16_t kSpeed = 0x4003;
constexpr std::uint16_t kData = 0x4004;
constexpr std::uint16_t kModemStatus = 0xC005;
constexpr std::uint16_t kSetLatency = 0x4009;
constexpr std::uint16_t kGetLatency = 0xC00A;

constexpr std::uint16_t kRaiseBoth = 0x0303;
constexpr std::uint16_t kDropBoth = 0x0300;
constexpr std::uint16_t kDropDtr = 0x0100;
constexpr std::uint16_t kDropRts = 0x0200;
constexpr std::uint16_t kBreakOn = 0x5008; // two stop bits and 8 data bits are in it too
constexpr std::uint16_t kBreakOff = 0x1008;

const Bytes kIdle{0x01, 0x60};

// A board that says so many bytes when it runs, once; DTR lets it.
DeviceHost talking(std::size_t bytes) {
    board::BoardOptions options;
    options.pace = false;
    options.target.monitor.text = std::string(bytes, 'x');
    options.target.monitor.interval = 0ms;
    options.target.invertedDtr = true;
    return DeviceHost(AdapterKind::ftdiSio, options);
}

// The length of the transfer with this number, 0 while it is not finished.
std::size_t lengthOf(DeviceHost& host, std::uint64_t id) {
    const auto transfer = host.finished(id);
    return transfer ? transfer->length : 0;
}

TEST(FtdiSpeed, DivisorsAreInEighthsOfAStep) {
    EXPECT_EQ(speedOfDivisor(0, 0), 3'000'000U);
    EXPECT_EQ(speedOfDivisor(1, 0), 2'000'000U);
    EXPECT_EQ(speedOfDivisor(3, 0), 1'000'000U);
    EXPECT_EQ(speedOfDivisor(6, 0), 500'000U);
    EXPECT_EQ(speedOfDivisor(12, 0), 250'000U);
    EXPECT_EQ(speedOfDivisor(26, 0), 115'384U);
    EXPECT_EQ(speedOfDivisor(0x4138, 0), 9'600U);   // 312 and a half
    EXPECT_EQ(speedOfDivisor(0xC034, 0), 57'553U);  // 52 and an eighth
    EXPECT_EQ(speedOfDivisor(0x800A, 0), 292'682U); // 10 and a quarter
    EXPECT_EQ(speedOfDivisor(0x000A, 1), 289'156U); // 10 and three eighths
    EXPECT_EQ(speedOfDivisor(0x400A, 1), 282'352U); // five
    EXPECT_EQ(speedOfDivisor(0x800A, 1), 279'069U); // six
    EXPECT_EQ(speedOfDivisor(0xC00A, 1), 275'862U); // seven
    EXPECT_FALSE(speedOfDivisor(0x4000, 0));
    EXPECT_EQ(speedOfDivisor(0x4001, 0), 2'000'000U); // 1 and a half
}

TEST(FtdiChip, KeepsTheSpeed) {
    DeviceHost host(AdapterKind::ftdiSio);
    EXPECT_TRUE(host.tell(kSpeed, 6));
    EXPECT_EQ(host.device().hostSpeed(), 500000U);
    EXPECT_FALSE(host.tell(kSpeed, 0x4000));
    EXPECT_EQ(host.device().hostSpeed(), 500000U);
}

TEST(FtdiChip, StatusComesWithTheLatencyTimer) {
    DeviceHost host(AdapterKind::ftdiSio);
    EXPECT_EQ(host.finished(host.askForBytes(512)).value().data, kIdle); // it is long over
    const std::uint64_t asked = host.askForBytes(512);
    EXPECT_EQ(host.device().nextDeadline(), host.now() + 16ms);
    host.wait(16ms - 1ns);
    EXPECT_FALSE(host.finished(asked));
    host.wait(1ns);
    EXPECT_EQ(host.finished(asked).value().data, kIdle);
}

TEST(FtdiChip, TheLatencyTimerCanBeSet) {
    DeviceHost host(AdapterKind::ftdiSio);
    EXPECT_EQ(host.ask(kGetLatency, 0, 1), Bytes{16});
    EXPECT_TRUE(host.tell(kSetLatency, 1));
    EXPECT_EQ(host.device().latencyTimer(), 1ms);
    host.askForBytes(512);
    const std::uint64_t asked = host.askForBytes(512);
    host.wait(1ms);
    EXPECT_EQ(host.finished(asked).value().data, kIdle);
    EXPECT_FALSE(host.tell(kSetLatency, 0));
    EXPECT_FALSE(host.tell(kSetLatency, 256));
    EXPECT_EQ(host.ask(kGetLatency, 0, 1), Bytes{1});
}

TEST(FtdiChip, OnlyFullPacketsDoNotWaitForTheLatencyTimer) {
    DeviceHost host = talking(62 * 3 + 5);
    host.askForBytes(64);
    const std::uint64_t full = host.askForBytes(64);
    const std::uint64_t longer = host.askForBytes(512);
    host.tell(kModemControl, kRaiseBoth); // so the board runs, and speaks
    host.wait(1ms);
    EXPECT_EQ(lengthOf(host, full), 64U);
    EXPECT_EQ(lengthOf(host, longer), 0U);
    host.wait(16ms);
    const Bytes bytes = host.finished(longer).value().data;
    ASSERT_EQ(bytes.size(), 64U + 64U + 2U + 5U);
    EXPECT_EQ(Bytes(bytes.begin() + 64, bytes.begin() + 67), (Bytes{0x01, 0x60, 'x'}));
}

TEST(FtdiChip, AResetForgetsWhatTheHostHasNotTaken) {
    for (const std::uint16_t what : {std::uint16_t{0}, std::uint16_t{1}, std::uint16_t{2}}) {
        DeviceHost host = talking(10);
        host.tell(kModemControl, kRaiseBoth);
        host.wait(1ms);
        EXPECT_TRUE(host.tell(kReset, what));
        EXPECT_EQ(lengthOf(host, host.askForBytes(64)), what == 2 ? 12U : 2U);
    }
}

TEST(FtdiChip, StatusTellsWhetherEverythingIsSent) {
    DeviceHost host(AdapterKind::ftdiSio);
    host.tell(kModemControl, kRaiseBoth);
    EXPECT_EQ(host.ask(kModemStatus, 0, 2), kIdle);
    host.handBytes(Bytes(10), kFtdiOut);
    EXPECT_EQ(host.ask(kModemStatus, 0, 2), (Bytes{0x01, 0x00}));
    host.wait(1s);
    EXPECT_EQ(host.ask(kModemStatus, 0, 2), kIdle);
}

TEST(FtdiChip, AStuckAdapterIsNeverDoneWithSending) {
    DeviceHost host(AdapterKind::ftdiSio, with("stuck@1"));
    host.tell(kModemControl, kRaiseBoth);
    EXPECT_EQ(host.ask(kModemStatus, 0, 2), (Bytes{0x01, 0x00}));
}

TEST(FtdiChip, LinesAndBreakReachTheBoard) {
    DeviceHost host(AdapterKind::ftdiSio);
    host.tell(kModemControl, kRaiseBoth);
    EXPECT_EQ(host.mode(), TargetMode::inReset);
    host.tell(kData, kBreakOn);
    host.tell(kModemControl, kDropDtr);
    EXPECT_EQ(host.mode(), TargetMode::awaitPulse);
    host.tell(kModemControl, kRaiseBoth);
    host.tell(kData, kBreakOff);
    host.tell(kModemControl, kDropBoth);
    EXPECT_EQ(host.mode(), TargetMode::running);
    EXPECT_EQ(host.device().board().closings(), 1U);
}

TEST(FtdiChip, ALineThatCouldNotBeSetIsAsItWas) {
    DeviceHost host(AdapterKind::ftdiSio, with("fail-set@1"));
    host.tell(kModemControl, kRaiseBoth);
    EXPECT_FALSE(host.tell(kModemControl, kDropDtr));
    EXPECT_TRUE(host.tell(kModemControl, kDropRts));
    EXPECT_EQ(host.device().board().closings(), 0U);
    EXPECT_TRUE(host.tell(kModemControl, kDropDtr));
    EXPECT_EQ(host.device().board().closings(), 1U);
}

TEST(FtdiChip, FaultsOfTheLinesRefuseRequests) {
    DeviceHost unreadable(AdapterKind::ftdiSio, with("fail-get"));
    EXPECT_FALSE(unreadable.ask(kModemStatus, 0, 2));
    DeviceHost unbreakable(AdapterKind::ftdiSio, with("fail-break"));
    EXPECT_TRUE(unbreakable.tell(kData, kBreakOff)); // nothing changes
    EXPECT_FALSE(unbreakable.tell(kData, kBreakOn));
}

TEST(FtdiChip, AnswersWhatTheDriverWantsToKnow) {
    DeviceHost host(AdapterKind::ftdiSio);
    EXPECT_EQ(host.ask(0xC090, 0, 2, 0x0A), (Bytes{0, 0})); // its memory of settings
    EXPECT_TRUE(host.tell(0x4002, 0));                      // flow control
    EXPECT_FALSE(host.tell(0x4091, 0));                     // writing to that memory
}

TEST(FtdiChip, ExchangesFrames) {
    DeviceHost host(AdapterKind::ftdiSio);
    host.tell(kModemControl, kRaiseBoth);
    host.tell(kSpeed, 26);
    host.tell(kData, kBreakOn);
    host.tell(kModemControl, kDropDtr);
    host.tell(kData, kBreakOff);
    host.handBytes({0x00}, kFtdiOut);
    host.wait(1ms);
    host.askForBytes(512);
    const std::uint64_t asked = host.askForBytes(512);
    host.handBytes(commandFrame({0x9A, 0, 33}), kFtdiOut);
    host.wait(16ms);
    const Bytes bytes = host.finished(asked).value().data;
    ASSERT_EQ(bytes.size(), 7U);
    EXPECT_EQ(Bytes(bytes.begin() + 2, bytes.end()), kAcknowledged);
    EXPECT_EQ(host.device().board().violations(), 0U);
}

} // namespace
} // namespace flashwriter::kernel
