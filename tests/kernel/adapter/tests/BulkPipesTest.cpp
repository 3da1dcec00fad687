// Transfers that are held, cancelled, or refused.

#include "CdcRequests.h"
#include "DeviceHost.h"

#include <gtest/gtest.h>

namespace flashwriter::kernel {
namespace {

// A host that has the port open, of a board that takes nothing.
class StuckHost : public DeviceHost {
public:
    explicit StuckHost(const char* fault) : DeviceHost(AdapterKind::cdcAcm, with(fault)) {
        tell(kLineState, 3);
    }
};

TEST(BulkPipes, CancelledTransfersComeBack) {
    DeviceHost host(AdapterKind::cdcAcm);
    const std::uint64_t first = host.askForBytes(512);
    const std::uint64_t second = host.askForBytes(512);
    host.device().cancel(first);
    host.device().cancel(4711); // there is no such transfer
    const FinishedTransfer transfer = host.finished(first).value();
    EXPECT_EQ(transfer.status, UsbStatus::cancelled);
    EXPECT_EQ(transfer.endpoint, 0x81);
    EXPECT_EQ(transfer.length, 0U);
    EXPECT_FALSE(host.finished(second));
}

TEST(BulkPipes, AResetEndsAllTransfers) {
    StuckHost host("stuck@1");
    const std::uint64_t asked = host.askForBytes(512);
    const std::uint64_t handed = host.handBytes({1, 2, 3}, kCdcOut);
    EXPECT_FALSE(host.finished(handed));
    host.device().reset();
    EXPECT_EQ(host.finished(asked).value().status, UsbStatus::cancelled);
    EXPECT_EQ(host.finished(handed).value().status, UsbStatus::cancelled);
}

TEST(BulkPipes, AStuckAdapterTakesNothing) {
    StuckHost host("stuck@1");
    const std::uint64_t handed = host.handBytes({1, 2, 3}, kCdcOut);
    host.wait(1h);
    EXPECT_FALSE(host.finished(handed));
    host.device().cancel(handed);
    EXPECT_EQ(host.finished(handed).value().length, 0U);
}

TEST(BulkPipes, AStuckAdapterMayHaveSomeRoomLeft) {
    StuckHost host("stuck:5@1");
    EXPECT_EQ(host.finished(host.handBytes({1, 2, 3}, kCdcOut)).value().length, 3U);
    const std::uint64_t cut = host.handBytes({1, 2, 3}, kCdcOut);
    EXPECT_FALSE(host.finished(cut));
    host.device().cancel(cut);
    EXPECT_EQ(host.finished(cut).value().length, 2U);
}

TEST(BulkPipes, ALongTransferIsTakenAsTheWireGetsFree) {
    DeviceHost host(AdapterKind::cdcAcm);
    const std::uint64_t handed = host.handBytes(Bytes(5000), kCdcOut); // at 9600 bits per second
    EXPECT_FALSE(host.finished(handed));
    host.wait(1s);
    EXPECT_FALSE(host.finished(handed));
    host.wait(4s);
    EXPECT_EQ(host.finished(handed).value().length, 5000U);
}

TEST(BulkPipes, WhatNoEndpointIsForIsRefused) {
    DeviceHost host(AdapterKind::cdcAcm);
    for (const std::uint64_t id :
         {host.askForBytes(512, 0x85), host.askForBytes(8, 0x82), host.askForBytes(512, 0x01),
          host.handBytes({1}, 0x02), host.handBytes({1}, 0x81), host.askForBytes(63),
          host.askForBytes(0)}) {
        EXPECT_EQ(host.finished(id).value().status, UsbStatus::invalid) << id;
    }
    EXPECT_EQ(host.finished(host.handBytes({}, kCdcOut)).value().status, UsbStatus::success);
}

TEST(BulkPipes, BytesThatNobodyAsksForAreKeptUpToALimit) {
    PlainQueue queue;
    EXPECT_EQ(queue.push(Bytes(400)), 400U);
    EXPECT_EQ(queue.push(Bytes(400)), 112U);
    EXPECT_EQ(queue.take(64, {}).value().size(), 64U);
    EXPECT_EQ(queue.take(8192, {}).value().size(), 448U);
    EXPECT_FALSE(queue.take(64, {}));
}

} // namespace
} // namespace flashwriter::kernel
