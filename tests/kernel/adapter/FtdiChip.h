#pragma once

#include "tests/kernel/adapter/SerialChip.h"
#include "tests/kernel/adapter/StatusQueue.h"

namespace flashwriter::kernel {

// An adapter for the ftdi_sio driver, of the kind that works at full speed and has one port.
class FtdiChip : public SerialChip {
public:
    explicit FtdiChip(SerialLines& lines) : m_lines(lines), m_queue(lines) {}

    std::optional<Bytes> request(const SetupPacket& setup, std::span<const std::uint8_t> data,
                                 BoardTime now) override;
    std::uint32_t bitsPerSecond() const override { return m_bitsPerSecond; }
    std::chrono::milliseconds latencyTimer() const override { return m_queue.latency(); }
    ReceiveQueue& queue() override { return m_queue; }

private:
    bool command(const SetupPacket& setup, BoardTime now);
    std::optional<Bytes> question(const SetupPacket& setup, BoardTime now);

    void reset(std::uint16_t what);
    bool setModemLines(std::uint16_t value, BoardTime now);
    bool setSpeed(const SetupPacket& setup);
    bool setBreak(bool on, BoardTime now);
    bool setLatency(std::uint16_t milliseconds);

    SerialLines& m_lines;
    StatusQueue m_queue;
    std::uint32_t m_bitsPerSecond = 9600;
    bool m_break = false;
};

// Bits per second of a speed request, whose 17 bits of divisor stand in wValue and in the lowest
// bit of wIndex; nothing for a divisor that gives no speed.
std::optional<std::uint32_t> speedOfDivisor(std::uint16_t value, std::uint16_t index);

} // namespace flashwriter::kernel
