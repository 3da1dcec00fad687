#pragma once

#include "board/BoardTime.h"
#include "board/Protocol.h"

#include <cstdint>
#include <optional>

namespace flashwriter::board {

// How a byte came over the wire.
enum class Reception : std::uint8_t {
    clean,
    wrongSpeed, // sent at another speed than the board listens at
    inBreak,    // sent while the line was held low
    collision,  // sent while the board itself was sending
};

// One byte on the wire from the host to the board, with the moments of its first and last bit.
struct WireByte {
    std::uint8_t value = 0;
    BoardTime begin{};
    BoardTime end{};
    Reception reception = Reception::clean;
};

// A complete host frame: its length byte has been satisfied, nothing else is checked yet.
struct HostFrame {
    Bytes bytes;
    BoardTime begin{}; // first bit of the first byte
    BoardTime end{};   // last bit of the last byte
};

// Puts bytes together to host frames by their start and length bytes.
class FrameReceiver {
public:
    // Takes one clean byte. Gives a frame when it completes one. A byte that neither belongs to a
    // frame nor begins one must not be handed in: ask beginsFrame() while empty().
    std::optional<HostFrame> take(const WireByte& byte);

    static bool beginsFrame(std::uint8_t value);

    bool empty() const { return m_frame.bytes.empty(); }
    const HostFrame& partial() const { return m_frame; }

    // Forgets the frame begun and gives what there was of it.
    HostFrame discard();

private:
    HostFrame m_frame;
};

} // namespace flashwriter::board
