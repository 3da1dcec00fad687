#include "tests/kernel/adapter/FtdiChip.h"

namespace flashwriter::kernel {

namespace {

constexpr std::uint8_t kVendorFromHost = 0x40;
constexpr std::uint8_t kVendorToHost = 0xC0;

// From the host.
constexpr std::uint8_t kReset = 0x00;
constexpr std::uint8_t kModemControl = 0x01;
constexpr std::uint8_t kFlowControl = 0x02;
constexpr std::uint8_t kSetSpeed = 0x03;
constexpr std::uint8_t kSetData = 0x04;
constexpr std::uint8_t kEventCharacter = 0x06;
constexpr std::uint8_t kErrorCharacter = 0x07;
constexpr std::uint8_t kSetLatencyTimer = 0x09;
// To the host.
constexpr std::uint8_t kGetModemStatus = 0x05;
constexpr std::uint8_t kGetLatencyTimer = 0x0A;
constexpr std::uint8_t kReadEeprom = 0x90;

} // namespace

std::optional<Bytes> FtdiChip::request(const SetupPacket& setup, std::span<const std::uint8_t>,
                                       BoardTime now) {
    if (setup.requestType == kVendorToHost) {
        return question(setup, now);
    }
    if (setup.requestType == kVendorFromHost && command(setup, now)) {
        return Bytes{};
    }
    return std::nullopt;
}

bool FtdiChip::command(const SetupPacket& setup, BoardTime now) {
    constexpr unsigned kBreakBit = 0x4000;
    switch (setup.request) {
    case kReset:
        reset(setup.value);
        return true;
    case kModemControl:
        return setModemLines(setup.value, now);
    case kSetSpeed:
        return setSpeed(setup);
    case kSetData:
        return setBreak((setup.value & kBreakBit) != 0, now);
    case kSetLatencyTimer:
        return setLatency(setup.value);
    case kFlowControl:
    case kEventCharacter:
    case kErrorCharacter:
        return true; // accepted, and of no consequence for this board
    default:
        return false;
    }
}

std::optional<Bytes> FtdiChip::question(const SetupPacket& setup, BoardTime now) {
    switch (setup.request) {
    case kGetModemStatus: {
        if (!m_lines.canBeRead(now)) {
            return std::nullopt;
        }
        const auto status = m_queue.status();
        return Bytes(status.begin(), status.end());
    }
    case kGetLatencyTimer:
        return Bytes{static_cast<std::uint8_t>(m_queue.latency().count())};
    case kReadEeprom:
        return Bytes{0, 0}; // no pin has a purpose of its own
    default:
        return std::nullopt;
    }
}

// What has been taken from the host is on the wire already and cannot be called back.
void FtdiChip::reset(std::uint16_t what) {
    constexpr std::uint16_t kEverything = 0;
    constexpr std::uint16_t kFromBoard = 1;
    if (what == kEverything || what == kFromBoard) {
        m_queue.clear();
    }
}

// The upper byte says which of the lines the lower one is about.
bool FtdiChip::setModemLines(std::uint16_t value, BoardTime now) {
    const auto line = [value](bool is, unsigned bit) {
        return (value & (bit << 8U)) != 0 ? (value & bit) != 0 : is;
    };
    return m_lines.set(line(m_lines.dtr(), 1), line(m_lines.rts(), 2), now);
}

bool FtdiChip::setSpeed(const SetupPacket& setup) {
    const auto speed = speedOfDivisor(setup.value, setup.index);
    m_bitsPerSecond = speed.value_or(m_bitsPerSecond);
    return speed.has_value();
}

// The request comes for other reasons too; only a change is one for the line.
bool FtdiChip::setBreak(bool on, BoardTime now) {
    if (on == m_break) {
        return true;
    }
    if (!m_lines.setBreak(on, now)) {
        return false;
    }
    m_break = on;
    return true;
}

bool FtdiChip::setLatency(std::uint16_t milliseconds) {
    if (milliseconds == 0 || milliseconds > 0xFF) {
        return false;
    }
    m_queue.setLatency(std::chrono::milliseconds(milliseconds));
    return true;
}

// 3 MHz divided by 14 bits of whole steps and three that stand for eighths; the two lowest divisors
// are spelt in a way of their own.
std::optional<std::uint32_t> speedOfDivisor(std::uint16_t value, std::uint16_t index) {
    constexpr std::uint32_t kEighthsPerSecond = 24'000'000;
    constexpr std::uint32_t kEighths[] = {0, 4, 2, 1, 3, 5, 6, 7}; // by the three bits
    const std::uint32_t whole = value & 0x3FFFU;
    const std::uint32_t fraction = (value >> 14U) + (index & 1U) * 4U;
    if (fraction == 0 && whole < 2) {
        return whole == 0 ? 3'000'000 : 2'000'000;
    }
    const std::uint32_t divisor = whole * 8 + kEighths[fraction];
    return divisor < 8 ? std::nullopt : std::optional(kEighthsPerSecond / divisor);
}

} // namespace flashwriter::kernel
