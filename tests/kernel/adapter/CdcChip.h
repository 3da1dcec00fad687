#pragma once

#include "tests/kernel/adapter/SerialChip.h"

namespace flashwriter::kernel {

// An adapter of the communications device class, abstract control model. Its interrupt endpoint
// stays silent: no line of a modem ever changes.
class CdcChip : public SerialChip {
public:
    explicit CdcChip(SerialLines& lines) : m_lines(lines) {}

    std::optional<Bytes> request(const SetupPacket& setup, std::span<const std::uint8_t> data,
                                 BoardTime now) override;
    std::uint32_t bitsPerSecond() const override;
    std::chrono::milliseconds latencyTimer() const override { return {}; }
    ReceiveQueue& queue() override { return m_queue; }

private:
    std::optional<Bytes> setLineCoding(std::span<const std::uint8_t> data);

    SerialLines& m_lines;
    PlainQueue m_queue;
    Bytes m_lineCoding{0x80, 0x25, 0, 0, 0, 0, 8}; // 9600 bits per second, 1 stop, none, 8 data
};

} // namespace flashwriter::kernel
