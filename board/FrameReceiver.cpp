#include "board/FrameReceiver.h"

#include <utility>

namespace flashwriter::board {

std::optional<HostFrame> FrameReceiver::take(const WireByte& byte) {
    if (m_frame.bytes.empty()) {
        m_frame.begin = byte.begin;
    }
    m_frame.bytes.push_back(byte.value);
    m_frame.end = byte.end;
    const bool complete = m_frame.bytes.size() >= 2 &&
                          m_frame.bytes.size() == frameLength(m_frame.bytes[0], m_frame.bytes[1]);
    if (!complete) {
        return std::nullopt;
    }
    return discard();
}

bool FrameReceiver::beginsFrame(std::uint8_t value) {
    return value == kCommandStart || value == kDataStart;
}

HostFrame FrameReceiver::discard() {
    return std::exchange(m_frame, HostFrame{});
}

} // namespace flashwriter::board
