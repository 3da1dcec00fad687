#include "tests/kernel/adapter/StatusQueue.h"

#include "tests/kernel/adapter/DeviceDescription.h"

namespace flashwriter::kernel {

namespace {

constexpr std::size_t kStatusSize = 2;
constexpr std::size_t kPayload = kBulkPacket - kStatusSize;

} // namespace

std::array<std::uint8_t, 2> StatusQueue::status() const {
    constexpr std::uint8_t kModem = 0x01;            // always set; no line of the modem is on
    constexpr std::uint8_t kTransmitterEmpty = 0x60; // its holding and its shift register
    return {kModem, m_lines.idle() ? kTransmitterEmpty : std::uint8_t{0}};
}

// The host's transfer ends with the first packet that is not full, or when it is full itself.
std::optional<Bytes> StatusQueue::take(std::size_t length, BoardTime now) {
    const std::size_t packets = length / kBulkPacket;
    if (size() < packets * kPayload && now < *nextDeadline()) {
        return std::nullopt;
    }
    Bytes bytes;
    bool full = true;
    for (std::size_t i = 0; i < packets && full; ++i) {
        full = size() >= kPayload;
        addPacket(bytes);
    }
    m_answered = now;
    return bytes;
}

void StatusQueue::addPacket(Bytes& bytes) {
    const auto front = status();
    bytes.insert(bytes.end(), front.begin(), front.end());
    moveTo(bytes, kPayload);
}

} // namespace flashwriter::kernel
