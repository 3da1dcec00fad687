// Faults: how they are written, and what each makes of a reply.

#include "board/FaultInjector.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace flashwriter::board {
namespace {

const Bytes kAck{0x02, 0x01, 0x06, 0xF9, 0x03};

Bytes spoilt(const char* fault, const Bytes& reply = kAck) {
    return FaultInjector({parseFault(fault)}).spoil(reply).bytes;
}

TEST(Fault, ReadsKindParameterAndNumber) {
    const Fault fault = parseFault("status:0x1b@3");
    EXPECT_EQ(fault.kind, FaultKind::status);
    EXPECT_EQ(fault.parameter, 0x1B);
    EXPECT_EQ(fault.n, 3U);
    EXPECT_EQ(parseFault("silence").parameter, Fault::kDefault);
    EXPECT_EQ(parseFault("silence").n, 0U);
    EXPECT_EQ(parseFault("delay:250").parameter, 250);
}

TEST(Fault, EveryKindCanBeWritten) {
    for (int kind = 0; kind <= static_cast<int>(FaultKind::failBreak); ++kind) {
        const auto expected = static_cast<FaultKind>(kind);
        EXPECT_EQ(parseFault(faultName(expected)).kind, expected);
    }
}

TEST(Fault, RefusesWhatItCannotRead) {
    for (const char* text : {"", "sloth", "status:", "status:x", "status:0x", "status:1@",
                             "status@-1", "delay:3600001", "status:1 @2"}) {
        EXPECT_THROW(parseFault(text), std::invalid_argument) << text;
    }
}

TEST(Fault, SpoilsTheFrameAsNamed) {
    EXPECT_EQ(spoilt("silence"), Bytes{});
    EXPECT_EQ(spoilt("wrong-sum"), (Bytes{0x02, 0x01, 0x06, 0xFA, 0x03}));
    EXPECT_EQ(spoilt("wrong-len"), (Bytes{0x02, 0x02, 0x06, 0xF9, 0x03}));
    EXPECT_EQ(spoilt("wrong-start:0x01"), (Bytes{0x01, 0x01, 0x06, 0xF9, 0x03}));
    EXPECT_EQ(spoilt("wrong-end"), (Bytes{0x02, 0x01, 0x06, 0xF9, 0x17}));
    EXPECT_EQ(spoilt("truncated"), (Bytes{0x02, 0x01, 0x06, 0xF9}));
    EXPECT_EQ(spoilt("truncated:3"), (Bytes{0x02, 0x01}));
    EXPECT_EQ(spoilt("truncated:9"), Bytes{});
    EXPECT_EQ(spoilt("doubled"),
              (Bytes{0x02, 0x01, 0x06, 0xF9, 0x03, 0x02, 0x01, 0x06, 0xF9, 0x03}));
    EXPECT_EQ(spoilt("noise-before:1"), (Bytes{0xF0, 0x02, 0x01, 0x06, 0xF9, 0x03}));
    EXPECT_EQ(spoilt("noise-after:2"), (Bytes{0x02, 0x01, 0x06, 0xF9, 0x03, 0xF0, 0xF1}));
}

TEST(Fault, ResizedFramesAndOtherStatusesAreWellFormed) {
    EXPECT_EQ(spoilt("status:0x07"), (Bytes{0x02, 0x01, 0x07, 0xF8, 0x03}));
    EXPECT_EQ(spoilt("resized:6"), (Bytes{0x02, 0x02, 0x06, 0x06, 0xF2, 0x03}));
    EXPECT_EQ(spoilt("resized:7"), (Bytes{0x02, 0x03, 0x06, 0x06, 0x06, 0xEB, 0x03}));
    EXPECT_EQ(spoilt("resized:5", {0x02, 0x02, 0x06, 0x06, 0xF2, 0x03}), kAck);
}

TEST(Fault, HitsOnlyTheNthReply) {
    FaultInjector injector({parseFault("silence@2")});
    EXPECT_EQ(injector.spoil(kAck).bytes, kAck);
    const SpoiltReply second = injector.spoil(kAck);
    EXPECT_EQ(second.bytes, Bytes{});
    EXPECT_EQ(second.note, "silence");
    EXPECT_EQ(injector.spoil(kAck).bytes, kAck);
}

TEST(Fault, SeveralHitOneReply) {
    FaultInjector injector(
        {parseFault("status:0x0F"), parseFault("delay:30"), parseFault("delay:12")});
    const SpoiltReply reply = injector.spoil(kAck);
    EXPECT_EQ(reply.bytes, (Bytes{0x02, 0x01, 0x0F, 0xF0, 0x03}));
    EXPECT_EQ(reply.delay, BoardTime(std::chrono::milliseconds(42)));
    EXPECT_EQ(reply.note, "status, delay, delay");
}

TEST(Fault, OtherOccasionsLeaveRepliesAlone) {
    for (const char* text :
         {"slow-entry", "stuck", "unplug-frame", "fail-get", "fail-set", "fail-break"}) {
        EXPECT_EQ(spoilt(text), kAck) << text;
    }
}

} // namespace
} // namespace flashwriter::board
