// The adapter by a clock of the test's own: what bytes cost, what the lines do, what faults do.

#include "board/Adapter.h"
#include "HostSide.h"

#include <algorithm>
#include <cerrno>

#include <gtest/gtest.h>
#include <sys/ioctl.h>

namespace flashwriter::board {
namespace {

using namespace std::chrono_literals;

class FakePort : public HostPort {
public:
    std::uint32_t bitsPerSecond() override { return speed; }
    std::size_t send(std::span<const std::uint8_t> bytes) override {
        received.insert(received.end(), bytes.begin(), bytes.end());
        return bytes.size();
    }
    void unplug() override { unplugged = true; }
    void jam(std::size_t room) override { jammedTo = room; }
    bool receivesWhileClosed() const override { return listens; }

    std::uint32_t speed = 115200;
    Bytes received;
    bool unplugged = false;
    bool listens = false; // while it is closed
    std::size_t jammedTo = 9999;
};

class AdapterTest : public testing::Test {
protected:
    void make(const BoardOptions& options = {}) {
        m_adapter = std::make_unique<Adapter>(options, m_port);
        m_adapter->portOpened(m_now);
    }

    static BoardOptions with(const char* fault) {
        BoardOptions options;
        options.faults = {parseFault(fault)};
        return options;
    }

    std::int32_t line(LineOperation operation, std::uint32_t bits = 0) {
        return m_adapter->lineRequest({.operation = operation, .bits = bits}, m_now).error;
    }

    // Sends the bytes, then goes from deadline to deadline until nothing is left to happen.
    Bytes send(const Bytes& bytes) {
        m_port.received.clear();
        m_adapter->hostBytes(bytes, m_now);
        while (const auto deadline = m_adapter->nextDeadline()) {
            m_now = *deadline;
            m_adapter->advance(m_now);
        }
        return m_port.received;
    }

    void enter() {
        line(LineOperation::startBreak);
        line(LineOperation::switchOff, TIOCM_DTR);
        line(LineOperation::endBreak);
        send({0x00});
    }

    void connect() {
        enter();
        ASSERT_EQ(send(commandFrame({0x9A, 0, 33})), kAcknowledged);
        ASSERT_EQ(send(kResetFrame), kAcknowledged);
    }

    FakePort m_port;
    std::unique_ptr<Adapter> m_adapter;
    BoardTime m_now{};
};

// 11 bits for each of the bytes, at 115200 bits per second; byte by byte, each cut to a nanosecond.
constexpr BoardTime bytesAt115200(int count) {
    return BoardTime(95486) * count;
}

TEST_F(AdapterTest, BytesTakeElevenBitTimesEachWay) {
    make();
    connect();
    const BoardTime before = m_now;
    EXPECT_EQ(send(kResetFrame), kAcknowledged);
    EXPECT_GE(m_now - before, bytesAt115200(10));
    EXPECT_LE(m_now - before, bytesAt115200(10) + 1us);
}

TEST_F(AdapterTest, WhatIsInHandGoesOutAtANewSpeedOnceThatIsTold) {
    make();
    m_port.speed = 9600;
    m_adapter->hostBytes(Bytes(10, 'x'), m_now);
    m_now = wireTime(2, 9600) - 1us; // amid the second byte
    m_port.speed = 115200;
    m_adapter->speedChanged(m_now);
    EXPECT_GE(m_adapter->nextDeadline().value(), wireTime(2, 9600) + bytesAt115200(8) - 1us);
    EXPECT_LE(m_adapter->nextDeadline().value(), wireTime(2, 9600) + bytesAt115200(8));
    m_adapter->speedChanged(1h); // nothing is in hand any more
    EXPECT_TRUE(m_adapter->idle());
}

TEST_F(AdapterTest, WithoutPaceNothingTakesTime) {
    BoardOptions options;
    options.pace = false;
    make(options);
    connect();
    EXPECT_EQ(m_now, BoardTime(0));
}

TEST_F(AdapterTest, PausesBetweenTwoFramesInARow) {
    BoardOptions options;
    options.target.frameGap = 3ms;
    make(options);
    connect();
    const BoardTime before = m_now;
    EXPECT_EQ(send(commandFrame({0xC0})).size(), 31U);
    EXPECT_GE(m_now - before, bytesAt115200(5 + 5 + 26) + 3ms);
}

TEST_F(AdapterTest, AtTheWrongSpeedBothSidesHearNoise) {
    make();
    enter();
    EXPECT_EQ(send(commandFrame({0x9A, 2, 33})), kAcknowledged);
    EXPECT_EQ(send(kResetFrame), Bytes{}); // the board is at 500000 now
    EXPECT_EQ(m_adapter->violations(), 0U);
    m_port.speed = 500000;
    EXPECT_EQ(send(kResetFrame), kAcknowledged);
    m_adapter->hostBytes(kResetFrame, m_now);
    m_port.speed = 115200; // before the reply comes
    const Bytes noise = send({});
    EXPECT_EQ(noise.size(), 5U);
    EXPECT_EQ(std::count(noise.begin(), noise.end(), 0x02), 0);
}

TEST_F(AdapterTest, ASpeedThatIsALittleOffWillDo) {
    make();
    m_port.speed = 117000;
    connect();
}

TEST_F(AdapterTest, SpeakingWhileTheBoardSpeaksIsACollision) {
    make();
    connect();
    m_port.received.clear();
    m_adapter->hostBytes(commandFrame({0xC0}), m_now);
    m_now += bytesAt115200(5) + 100us; // the reply has begun
    m_adapter->advance(m_now);
    send(kResetFrame);
    EXPECT_EQ(m_adapter->violations(), 1U);
}

TEST_F(AdapterTest, LinesAreAsTheHostSetThem) {
    make();
    EXPECT_EQ(m_adapter->lineRequest({}, m_now).bits, std::uint32_t{TIOCM_DTR | TIOCM_RTS});
    EXPECT_EQ(m_adapter->target().mode(), TargetMode::inReset);
    line(LineOperation::set, TIOCM_RTS);
    EXPECT_EQ(m_adapter->lineRequest({}, m_now).bits, std::uint32_t{TIOCM_RTS});
    EXPECT_EQ(m_adapter->target().mode(), TargetMode::running);
    line(LineOperation::switchOn, TIOCM_DTR);
    EXPECT_EQ(m_adapter->target().mode(), TargetMode::inReset);
    m_adapter->portClosed(m_now);
    EXPECT_EQ(m_adapter->target().mode(), TargetMode::running);
    EXPECT_EQ(m_adapter->closings(), 1U);
    EXPECT_EQ(m_adapter->sessions(), 0U);
}

// The board is released in BREAK, or without it.
TEST_F(AdapterTest, ClosingEndsABreakOnlyWithSomeDrivers) {
    make();
    line(LineOperation::startBreak);
    m_adapter->portClosed(m_now, Adapter::BreakAtClose::stays);
    EXPECT_EQ(m_adapter->target().mode(), TargetMode::awaitPulse);
    m_adapter->portOpened(m_now);
    m_adapter->portClosed(m_now);
    EXPECT_EQ(m_adapter->target().mode(), TargetMode::running);
}

TEST_F(AdapterTest, ASessionIsModeEntryAndClose) {
    make();
    connect();
    m_adapter->portClosed(m_now);
    EXPECT_EQ(m_adapter->sessions(), 1U);
}

TEST_F(AdapterTest, LineRequestsFailByFault) {
    make(with("fail-get@2"));
    EXPECT_EQ(line(LineOperation::get), 0);
    EXPECT_EQ(line(LineOperation::get), EIO);
    EXPECT_EQ(line(LineOperation::get), 0);
    make(with("fail-set:25@1"));
    EXPECT_EQ(line(LineOperation::startBreak), 0);
    EXPECT_EQ(line(LineOperation::set, TIOCM_DTR), 25);
    EXPECT_EQ(line(LineOperation::set, TIOCM_DTR), 0);
    make(with("fail-break"));
    EXPECT_EQ(line(LineOperation::startBreak), EIO);
    EXPECT_EQ(line(LineOperation::endBreak), EIO);
    EXPECT_EQ(line(LineOperation::get), 0);
}

TEST_F(AdapterTest, ADelayedReplyComesLaterAndIsNoCollision) {
    make(with("delay:300@3"));
    connect();
    m_port.received.clear();
    m_adapter->hostBytes(kResetFrame, m_now);
    m_now += 250ms;
    m_adapter->advance(m_now);
    EXPECT_EQ(m_port.received, Bytes{});
    // The host asks again meanwhile; both answers come.
    EXPECT_EQ(send(kResetFrame).size(), 10U);
    EXPECT_EQ(m_adapter->violations(), 0U);
}

TEST_F(AdapterTest, UnplugsInTheMiddleOfAReply) {
    make(with("unplug-reply:3@3"));
    connect();
    EXPECT_EQ(send(kResetFrame), (Bytes{0x02, 0x01, 0x06}));
    EXPECT_TRUE(m_port.unplugged);
    EXPECT_EQ(line(LineOperation::get), EIO);
    EXPECT_EQ(m_adapter->sessions(), 1U);
    EXPECT_EQ(m_adapter->room(), 0U);
}

TEST_F(AdapterTest, UnplugsInTheMiddleOfAHostFrame) {
    make(with("unplug-frame:4@3"));
    connect();
    EXPECT_FALSE(m_port.unplugged);
    EXPECT_EQ(send(kResetFrame), Bytes{});
    EXPECT_TRUE(m_port.unplugged);
}

TEST_F(AdapterTest, GetsStuckBeforeTheNthHostFrame) {
    make(with("stuck:7@3"));
    enter();
    ASSERT_EQ(send(commandFrame({0x9A, 0, 33})), kAcknowledged);
    EXPECT_GT(m_adapter->room(), 0U);
    EXPECT_EQ(send(kResetFrame), kAcknowledged); // it is full when the answer goes out
    EXPECT_EQ(m_adapter->room(), 0U);
    EXPECT_EQ(m_port.jammedTo, 7U);
}

TEST_F(AdapterTest, SlowEntryIsAFaultToo) {
    make(with("slow-entry:150@1"));
    enter();
    EXPECT_EQ(send(commandFrame({0x9A, 0, 33})), Bytes{});
    m_now += 200ms;
    EXPECT_EQ(send(commandFrame({0x9A, 0, 33})), kAcknowledged);
}

TEST_F(AdapterTest, ResetCutsAReplyOff) {
    make();
    connect();
    m_port.received.clear();
    m_adapter->hostBytes(kResetFrame, m_now);
    m_now += bytesAt115200(6);
    m_adapter->advance(m_now);
    line(LineOperation::switchOn, TIOCM_DTR);
    EXPECT_EQ(send({}), Bytes{});
}

TEST_F(AdapterTest, TranscriptTellsWhenFramesCameAndWereAnswered) {
    make();
    connect();
    const BoardTime before = m_now;
    send(kResetFrame);
    const Transcript& transcript = m_adapter->transcript();
    const TranscriptRecord& reply = transcript.back();
    const TranscriptRecord& frame = transcript[transcript.size() - 2];
    EXPECT_EQ(frame.kind, TranscriptRecord::Kind::hostFrame);
    EXPECT_EQ(frame.bytes, kResetFrame);
    EXPECT_EQ(frame.begin, before / 1us);
    EXPECT_EQ(frame.due, (before + bytesAt115200(5)) / 1us);
    EXPECT_EQ(reply.kind, TranscriptRecord::Kind::reply);
    EXPECT_EQ(reply.bytes, kAcknowledged);
    EXPECT_EQ(reply.due, m_now / 1us);
    EXPECT_EQ(reply.written, m_now / 1us);
    EXPECT_NE(transcriptLine(frame).find("> [01 01 00 FF 03] Reset"), std::string::npos);
    EXPECT_NE(transcriptLine(reply).find("< [02 01 06 F9 03] status ACK"), std::string::npos);
}

TEST_F(AdapterTest, TranscriptGivesTheHostsOverheadPerDataFrame) {
    make();
    connect();
    send(commandFrame(withAddress(withAddress({0x40}, 0), 0x3FF)));
    for (int i = 0; i < 4; ++i) {
        m_now += std::chrono::milliseconds(i + 1);
        send(dataFrame(Bytes(256, 0x11), i == 3));
    }
    const std::vector<std::int64_t> overheads = hostOverheads(m_adapter->transcript());
    ASSERT_EQ(overheads.size(), 3U);
    EXPECT_NEAR(static_cast<double>(overheads[0]), 2000.0, 1.0);
    EXPECT_NEAR(static_cast<double>(overheads[2]), 4000.0, 1.0);
}

// It says something every 10 ms, at a speed that the host hears well at first.
TEST_F(AdapterTest, AClosedPortHearsTheBoardIfItGoesOnReceiving) {
    BoardOptions options;
    options.target.monitor = {"hi", 10ms, 115200};
    for (const bool listens : {false, true}) {
        m_port.listens = listens;
        m_port.speed = 115200;
        Adapter adapter(options, m_port);
        const std::size_t records = adapter.transcript().size();
        adapter.advance(1ms);
        EXPECT_EQ(m_port.received, listens ? (Bytes{'h', 'i'}) : Bytes{});
        m_port.speed = 9600;
        adapter.advance(11ms);
        EXPECT_EQ(m_port.received.size(), listens ? 4U : 0U);
        EXPECT_EQ(std::count(m_port.received.begin(), m_port.received.end(), 'h'), listens ? 1 : 0);
        EXPECT_EQ(adapter.transcript().size(), records);
    }
}

} // namespace
} // namespace flashwriter::board
