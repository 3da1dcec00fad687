#pragma once

#include "tests/kernel/adapter/ReceiveQueue.h"
#include "tests/kernel/adapter/SerialLines.h"

#include <array>
#include <chrono>

namespace flashwriter::kernel {

// Hands the bytes over in packets that begin with two bytes of status. A packet that is not full,
// be it without any byte of the board, goes out only when the latency timer has run out since the
// host was last answered.
class StatusQueue : public ReceiveQueue {
public:
    explicit StatusQueue(const SerialLines& lines) : m_lines(lines) {}

    std::optional<Bytes> take(std::size_t length, BoardTime now) override;
    std::optional<BoardTime> nextDeadline() const override { return m_answered + m_latency; }

    std::array<std::uint8_t, 2> status() const;

    std::chrono::milliseconds latency() const { return m_latency; }
    void setLatency(std::chrono::milliseconds latency) { m_latency = latency; }

private:
    void addPacket(Bytes& bytes);

    const SerialLines& m_lines;
    std::chrono::milliseconds m_latency{16};
    BoardTime m_answered{};
};

} // namespace flashwriter::kernel
