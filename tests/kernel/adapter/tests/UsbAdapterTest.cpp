// The adapter over a socket, as a host meets it.

#include "tests/kernel/adapter/UsbAdapter.h"
#include "CdcRequests.h"
#include "DeviceHost.h"
#include "RedirPeer.h"

#include <ctime>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <gtest/gtest.h>

namespace flashwriter::kernel {
namespace {

using board::commandFrame;
using board::kAcknowledged;
using board::TargetMode;

constexpr std::uint8_t kSuccess = 0;
constexpr std::uint8_t kCancelled = 1;
constexpr std::uint8_t kInvalid = 2;
constexpr std::uint8_t kStalled = 4;

constexpr auto kPatience = 20s; // a guard against hanging, not a measure

class UsbAdapterTest : public ::testing::Test {
protected:
    // Plugs one in, and waits until the host knows it.
    void plug(const UsbAdapterOptions& options) {
        m_adapter.plug(options);
        m_host.emplace(m_listener.accept());
        ASSERT_TRUE(m_host->awaitDevice());
        const std::uint64_t configured = m_host->configure(1);
        ASSERT_TRUE(m_host->awaitAnswer(configured));
        EXPECT_EQ(m_host->statuses[configured], kSuccess);
    }

    static UsbAdapterOptions unpaced(AdapterKind kind = AdapterKind::cdcAcm) {
        UsbAdapterOptions options{.kind = kind, .board = {}};
        options.board.pace = false;
        return options;
    }

    std::uint8_t statusOf(std::uint64_t id) {
        return m_host->awaitAnswer(id) ? m_host->statuses[id] : 0xFF;
    }

    void enterProgrammingMode() {
        m_host->tell(kLineState, 3);
        m_host->tell(kSetLineCoding, 0, {0x00, 0xC2, 0x01, 0x00, 2, 0, 8}); // 115200
        m_host->tell(kBreak, 0xFFFF);
        m_host->tell(kLineState, 2);
        m_host->tell(kBreak, 0);
        m_host->handBytes(0x01, {0x00});
        m_host->flush();
        ASSERT_TRUE(m_adapter.waitForMode(TargetMode::awaitBaudRate, kPatience));
    }

    RedirListener m_listener;
    UsbAdapter m_adapter{m_listener.path()};
    std::optional<RedirPeer> m_host;
};

// The plus makes a value of a field that a reference may not be bound to: the tables are packed.
TEST_F(UsbAdapterTest, AnnouncesADeviceForTheClassDriver) {
    plug(unpaced());
    EXPECT_EQ(m_host->device->speed, usb_redir_speed_full);
    EXPECT_EQ(m_host->device->device_class, 2);
    ASSERT_EQ(+m_host->interfaces->interface_count, 2U);
    EXPECT_EQ(m_host->interfaces->interface_class[0], 2);
    EXPECT_EQ(m_host->interfaces->interface_class[1], 10);
    EXPECT_EQ(m_host->endpoints->type[1], usb_redir_type_bulk);
    EXPECT_EQ(m_host->endpoints->type[17], usb_redir_type_bulk);
    EXPECT_EQ(m_host->endpoints->type[18], usb_redir_type_interrupt);
    EXPECT_EQ(m_host->endpoints->interface[17], 1);
    EXPECT_EQ(m_host->endpoints->type[2], usb_redir_type_invalid);
    EXPECT_EQ(+m_host->endpoints->max_packet_size[17], 64);
}

TEST_F(UsbAdapterTest, AnnouncesADeviceForTheFtdiDriver) {
    plug(unpaced(AdapterKind::ftdiSio));
    EXPECT_EQ(+m_host->device->vendor_id, 0x0403);
    EXPECT_EQ(+m_host->device->product_id, 0x6001);
    EXPECT_EQ(+m_host->device->device_version_bcd, 0x0600);
    EXPECT_EQ(m_host->endpoints->type[2], usb_redir_type_bulk);
    EXPECT_EQ(m_adapter.latencyTimer(), 16ms);
    EXPECT_EQ(statusOf(m_host->tell(0x4009, 1)), kSuccess);
    EXPECT_EQ(m_adapter.latencyTimer(), 1ms);
}

// A host looks at the tables when the device comes, and uses what both ends have told of: there are
// no streams here, and it has to ask for bytes itself.
TEST_F(UsbAdapterTest, DescribesTheDeviceFirstAndPromisesNothingThatItHasNot) {
    for (const AdapterKind kind : {AdapterKind::cdcAcm, AdapterKind::ftdiSio}) {
        plug(unpaced(kind));
        EXPECT_TRUE(m_host->describedBefore);
        EXPECT_TRUE(m_host->has(usb_redir_cap_ep_info_max_packet_size));
        EXPECT_FALSE(m_host->has(usb_redir_cap_bulk_streams));
        EXPECT_FALSE(m_host->has(usb_redir_cap_bulk_receiving));
    }
}

TEST_F(UsbAdapterTest, AnswersAndRefusesRequests) {
    plug(unpaced());
    const std::uint64_t device = m_host->ask(0x8006, 0x0100, 64);
    EXPECT_EQ(statusOf(device), kSuccess);
    EXPECT_EQ(m_host->received[device].size(), 18U);
    EXPECT_EQ(statusOf(m_host->ask(0x8006, 0x0600, 10)), kStalled);
    EXPECT_EQ(statusOf(m_host->tell(0x4055, 0)), kStalled);
    EXPECT_EQ(statusOf(m_host->configure(2)), kStalled);
    EXPECT_EQ(statusOf(m_host->set(1, 0)), kSuccess);
    EXPECT_EQ(statusOf(m_host->set(1, 1)), kStalled);
    EXPECT_EQ(statusOf(m_host->listenForInterrupts(0x82)), kSuccess);
    EXPECT_EQ(statusOf(m_host->listenForInterrupts(0x83)), kInvalid);
    EXPECT_EQ(statusOf(m_host->startStream(0x84)), kInvalid);
    EXPECT_EQ(statusOf(m_host->askForBytes(0x85, 64)), kInvalid);
}

TEST_F(UsbAdapterTest, ExchangesAFrame) {
    plug(unpaced());
    const std::uint64_t asked = m_host->askForBytes(0x81, 512);
    enterProgrammingMode();
    EXPECT_EQ(statusOf(m_host->handBytes(0x01, commandFrame({0x9A, 0, 33}))), kSuccess);
    EXPECT_EQ(statusOf(asked), kSuccess);
    EXPECT_EQ(m_host->received[asked], kAcknowledged);
    EXPECT_EQ(m_adapter.bitsPerSecond(), 115200U);
    EXPECT_EQ(m_adapter.violations(), 0U) << transcriptText(m_adapter.transcript());
    EXPECT_EQ(statusOf(m_host->tell(kLineState, 0)), kSuccess);
    EXPECT_TRUE(m_adapter.waitForClosings(1, kPatience));
}

TEST_F(UsbAdapterTest, TheLatencyTimerWakesTheAdapter) {
    plug(unpaced(AdapterKind::ftdiSio));
    for (int i = 0; i < 3; ++i) {
        const std::uint64_t asked = m_host->askForBytes(0x81, 512);
        ASSERT_EQ(statusOf(asked), kSuccess);
        EXPECT_EQ(m_host->received[asked], (Bytes{0x01, 0x60}));
    }
}

TEST_F(UsbAdapterTest, CancelledTransfersComeBack) {
    plug(unpaced());
    const std::uint64_t asked = m_host->askForBytes(0x81, 512);
    m_host->cancel(asked);
    m_host->cancel(asked + 1000);
    EXPECT_EQ(statusOf(asked), kCancelled);
}

TEST_F(UsbAdapterTest, UnpluggedItIsGoneForTheHost) {
    plug(unpaced());
    m_adapter.unplug();
    EXPECT_TRUE(m_host->awaitEnd());
    EXPECT_TRUE(m_host->gone);
    EXPECT_EQ(m_adapter.mode(), TargetMode::running);
    EXPECT_FALSE(m_adapter.unplugged()); // not by a fault
    m_adapter.unplug();
}

TEST_F(UsbAdapterTest, AFaultUnplugsIt) {
    UsbAdapterOptions options = unpaced();
    options.board.faults = {board::parseFault("unplug-frame:2@1")};
    plug(options);
    enterProgrammingMode();
    m_host->handBytes(0x01, commandFrame({0x9A, 0, 33}));
    EXPECT_TRUE(m_host->awaitEnd());
    EXPECT_TRUE(m_host->gone);
    EXPECT_TRUE(m_adapter.unplugged());
}

TEST_F(UsbAdapterTest, AFaultUnplugsItBehindTheBeginningOfAReply) {
    UsbAdapterOptions options = unpaced();
    options.board.faults = {board::parseFault("unplug-reply:2@1")};
    plug(options);
    const std::uint64_t asked = m_host->askForBytes(0x81, 512);
    enterProgrammingMode();
    m_host->handBytes(0x01, commandFrame({0x9A, 0, 33}));
    EXPECT_TRUE(m_host->awaitEnd());
    EXPECT_EQ(m_host->received[asked], Bytes(kAcknowledged.begin(), kAcknowledged.begin() + 2));
    EXPECT_TRUE(m_host->gone);
}

TEST_F(UsbAdapterTest, ItComesLooseWhereItIsToldTo) {
    UsbAdapterOptions options = unpaced();
    options.looseAt = "BREAK on";
    plug(options);
    EXPECT_EQ(statusOf(m_host->tell(kLineState, 3)), kSuccess);
    EXPECT_FALSE(m_host->gone);
    EXPECT_EQ(statusOf(m_host->tell(kBreak, 0xFFFF)), kSuccess);
    EXPECT_TRUE(m_host->awaitEnd());
    EXPECT_TRUE(m_host->gone);
    EXPECT_FALSE(m_adapter.unplugged()); // not by a fault of the board
}

TEST_F(UsbAdapterTest, PluggedInAgainItIsANewBoard) {
    plug(unpaced());
    enterProgrammingMode();
    plug(unpaced(AdapterKind::ftdiSio));
    EXPECT_EQ(m_adapter.mode(), TargetMode::running);
    EXPECT_EQ(+m_host->device->vendor_id, 0x0403);
}

TEST_F(UsbAdapterTest, AHostThatLeavesIsNoMatter) {
    plug(unpaced());
    m_host.reset();
    const std::clock_t before = std::clock();
    std::this_thread::sleep_for(200ms);
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 20); // it sleeps
    m_adapter.unplug();
    plug(unpaced());
}

// A message of a type that does not exist, and one whose length does not fit its type.
TEST_F(UsbAdapterTest, MalformedMessagesAreSkipped) {
    plug(unpaced());
    m_host->sendRaw({0x4D, 0, 0, 0, 3, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3});
    m_host->sendRaw({100, 0, 0, 0, 2, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 1, 2});
    EXPECT_EQ(statusOf(m_host->ask(0x8006, 0x0100, 64)), kSuccess);
}

TEST_F(UsbAdapterTest, BeforeItIsPluggedInThereIsNothingToAskFor) {
    EXPECT_THROW(m_adapter.mode(), std::logic_error);
    EXPECT_THROW(m_adapter.bitsPerSecond(), std::logic_error);
}

TEST_F(UsbAdapterTest, OptionsThatNoBoardHasAreRefused) {
    UsbAdapterOptions options = unpaced();
    options.board.target.flash.codeKib = 1;
    EXPECT_THROW(m_adapter.plug(options), std::invalid_argument);
}

TEST(UsbAdapterPath, AnImpossibleNameIsRefused) {
    UsbAdapter adapter(std::string(200, 'x'));
    EXPECT_THROW(adapter.plug({}), std::system_error);
}

} // namespace
} // namespace flashwriter::kernel
