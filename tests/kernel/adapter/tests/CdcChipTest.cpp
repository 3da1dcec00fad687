// The requests of the communications device class, and its plain bytes.

#include "CdcRequests.h"
#include "DeviceHost.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

namespace flashwriter::kernel {
namespace {

using board::commandFrame;
using board::kAcknowledged;
using board::TargetMode;

Bytes codingFor(std::uint32_t speed) {
    Bytes coding;
    for (int shift = 0; shift < 32; shift += 8) {
        coding.push_back(static_cast<std::uint8_t>(speed >> shift));
    }
    coding.insert(coding.end(), {2, 0, 8});
    return coding;
}

void enterProgrammingMode(DeviceHost& host) {
    host.tell(kLineState, 3);
    host.tell(kSetLineCoding, 0, codingFor(115200));
    host.tell(kBreak, 0xFFFF);
    host.tell(kLineState, 2);
    host.tell(kBreak, 0);
    host.handBytes({0x00}, kCdcOut);
    host.wait(1ms);
}

TEST(CdcChip, KeepsTheLineCoding) {
    DeviceHost host(AdapterKind::cdcAcm);
    EXPECT_EQ(host.device().hostSpeed(), 9600U);
    EXPECT_TRUE(host.tell(kSetLineCoding, 0, codingFor(500000)));
    EXPECT_EQ(host.device().hostSpeed(), 500000U);
    EXPECT_EQ(host.ask(kGetLineCoding, 0, 7), codingFor(500000));
    EXPECT_EQ(host.device().latencyTimer(), 0ms);
}

TEST(CdcChip, ANewSpeedIsThatOfWhatIsInHand) {
    DeviceHost host(AdapterKind::cdcAcm);
    host.tell(kLineState, 3);
    host.handBytes(Bytes(100), kCdcOut); // 114 ms at 9600 bits per second
    host.tell(kSetLineCoding, 0, codingFor(115200));
    host.wait(15ms);
    EXPECT_TRUE(host.device().board().idle());
}

TEST(CdcChip, RefusesALineCodingThatIsNone) {
    DeviceHost host(AdapterKind::cdcAcm);
    EXPECT_FALSE(host.tell(kSetLineCoding, 0, {}));
    EXPECT_FALSE(host.tell(kSetLineCoding, 0, {0x00, 0xC2, 0x01}));
    EXPECT_FALSE(host.tell(kSetLineCoding, 0, Bytes(8, 1)));
    EXPECT_FALSE(host.tell(kSetLineCoding, 0, codingFor(0)));
    EXPECT_FALSE(host.tell(kSetLineCoding, 0, codingFor(115200), 1)); // the data interface
    EXPECT_EQ(host.device().hostSpeed(), 9600U);
}

TEST(CdcChip, TheFirstLineRaisedOpensThePortAndTheLastOneDroppedClosesIt) {
    DeviceHost host(AdapterKind::cdcAcm);
    EXPECT_EQ(host.mode(), TargetMode::running);
    EXPECT_TRUE(host.tell(kLineState, 3));
    EXPECT_EQ(host.mode(), TargetMode::inReset);
    EXPECT_TRUE(host.tell(kLineState, 2));
    EXPECT_EQ(host.mode(), TargetMode::running);
    EXPECT_EQ(host.device().board().closings(), 0U);
    EXPECT_TRUE(host.tell(kLineState, 0));
    EXPECT_TRUE(host.tell(kLineState, 0));
    EXPECT_EQ(host.device().board().closings(), 1U);
    const board::Transcript& transcript = host.device().board().transcript();
    EXPECT_EQ(std::count_if(transcript.begin(), transcript.end(),
                            [](const auto& record) { return record.meaning == "port opened"; }),
              1);
}

TEST(CdcChip, ABreakOutlastsThePort) {
    DeviceHost host(AdapterKind::cdcAcm);
    host.tell(kLineState, 3);
    host.tell(kBreak, 0xFFFF);
    host.tell(kLineState, 0);
    EXPECT_EQ(host.mode(), TargetMode::awaitPulse);
    EXPECT_FALSE(host.tell(kBreak, 250));
}

TEST(CdcChip, FaultsOfTheLinesRefuseRequests) {
    DeviceHost unsettable(AdapterKind::cdcAcm, with("fail-set"));
    EXPECT_TRUE(unsettable.tell(kLineState, 3)); // opening is not asked for
    EXPECT_FALSE(unsettable.tell(kLineState, 2));
    EXPECT_EQ(unsettable.mode(), TargetMode::inReset);
    DeviceHost unbreakable(AdapterKind::cdcAcm, with("fail-break"));
    EXPECT_FALSE(unbreakable.tell(kBreak, 0xFFFF));
}

TEST(CdcChip, ExchangesFrames) {
    DeviceHost host(AdapterKind::cdcAcm);
    const std::uint64_t asked = host.askForBytes(512);
    enterProgrammingMode(host);
    ASSERT_EQ(host.mode(), TargetMode::awaitBaudRate);
    const std::uint64_t handed = host.handBytes(commandFrame({0x9A, 0, 33}), kCdcOut);
    EXPECT_EQ(host.finished(handed).value().length, 7U);
    EXPECT_FALSE(host.finished(asked)); // the bytes have to pass the wire
    host.wait(12 * 95486ns);
    EXPECT_EQ(host.finished(asked).value().data, kAcknowledged);
    EXPECT_EQ(host.device().board().violations(), 0U);
}

TEST(CdcChip, BytesWaitForAHostThatAsksLate) {
    DeviceHost host(AdapterKind::cdcAcm);
    enterProgrammingMode(host);
    host.handBytes(commandFrame({0x9A, 0, 33}), kCdcOut);
    host.wait(10ms);
    EXPECT_EQ(host.finished(host.askForBytes(64)).value().data, kAcknowledged);
}

// A board that runs as long as nobody opens the port; the chip has no room for all that it says.
TEST(CdcChip, KeepsWhatTheBoardSaysWhileThePortIsClosed) {
    board::BoardOptions options;
    options.target.monitor = {std::string(100, 'x'), 10ms, 9600};
    DeviceHost host(AdapterKind::cdcAcm, options);
    for (int i = 0; i < 50; ++i) {
        host.wait(10ms);
    }
    EXPECT_EQ(host.device().takenBeforeFrames(), 0U);
    host.tell(kLineState, 3);
    EXPECT_EQ(host.finished(host.askForBytes(8192)).value().data, Bytes(512, 'x'));
    EXPECT_EQ(host.device().takenBeforeFrames(), 512U);
    enterProgrammingMode(host);
    host.handBytes(commandFrame({0x9A, 0, 33}), kCdcOut);
    host.wait(10ms);
    EXPECT_EQ(host.finished(host.askForBytes(64)).value().data, kAcknowledged);
    EXPECT_EQ(host.device().takenBeforeFrames(), 512U);
}

} // namespace
} // namespace flashwriter::kernel
