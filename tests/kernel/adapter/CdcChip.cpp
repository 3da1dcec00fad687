#include "tests/kernel/adapter/CdcChip.h"

namespace flashwriter::kernel {

namespace {

constexpr std::uint16_t kSetLineCoding = 0x2120;
constexpr std::uint16_t kGetLineCoding = 0xA121;
constexpr std::uint16_t kSetControlLineState = 0x2122;
constexpr std::uint16_t kSendBreak = 0x2123;

std::uint32_t speedOf(std::span<const std::uint8_t> lineCoding) {
    std::uint32_t speed = 0;
    for (std::size_t i = 4; i-- > 0;) {
        speed = speed * 0x100U + lineCoding[i];
    }
    return speed;
}

std::optional<Bytes> emptyIf(bool done) {
    return done ? std::optional(Bytes{}) : std::nullopt;
}

} // namespace

std::optional<Bytes> CdcChip::request(const SetupPacket& setup, std::span<const std::uint8_t> data,
                                      BoardTime now) {
    constexpr unsigned kDtr = 1;
    constexpr unsigned kRts = 2;
    constexpr unsigned kUntilTold = 0xFFFF;
    if (setup.index != 0) {
        return std::nullopt; // the control interface is meant by all of them
    }
    switch (setup.kind()) {
    case kSetLineCoding:
        return setLineCoding(data);
    case kGetLineCoding:
        return m_lineCoding;
    case kSetControlLineState:
        return emptyIf(m_lines.set((setup.value & kDtr) != 0, (setup.value & kRts) != 0, now));
    case kSendBreak:
        // A BREAK of so many milliseconds is what no driver here asks for.
        return emptyIf((setup.value == 0 || setup.value == kUntilTold) &&
                       m_lines.setBreak(setup.value != 0, now));
    default:
        return std::nullopt;
    }
}

std::uint32_t CdcChip::bitsPerSecond() const {
    return speedOf(m_lineCoding);
}

std::optional<Bytes> CdcChip::setLineCoding(std::span<const std::uint8_t> data) {
    if (data.size() != m_lineCoding.size() || speedOf(data) == 0) {
        return std::nullopt;
    }
    m_lineCoding.assign(data.begin(), data.end());
    return Bytes{};
}

} // namespace flashwriter::kernel
