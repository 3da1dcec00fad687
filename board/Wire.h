#pragma once

#include "board/BoardTime.h"

#include <cstddef>
#include <cstdint>

namespace flashwriter::board {

// A start bit, eight data bits and two stop bits.
inline constexpr std::uint32_t kBitsPerByte = 11;

// The time that the bytes take at this speed.
BoardTime wireTime(std::size_t bytes, std::uint32_t bitsPerSecond);

// Whether a receiver at one speed can read what a sender at the other sends: within 3 %, about what
// a receiver tolerates that samples each bit of a byte in its middle.
bool speedsAgree(std::uint32_t one, std::uint32_t other);

// What a receiver at the wrong speed makes of a byte; never the start byte of any frame.
std::uint8_t garble(std::uint8_t byte);

// The one line between host and board: it carries one byte at a time, whichever way.
class Wire {
public:
    // Without pacing bytes take no time at all.
    explicit Wire(bool paced) : m_paced(paced) {}

    // Occupies the line for the bytes, from the given moment or when it is free. Gives the moment
    // of their last bit.
    BoardTime occupy(BoardTime from, std::size_t bytes, std::uint32_t bitsPerSecond);

    // The line is free from that moment on after all.
    void freeFrom(BoardTime moment) { m_free = moment; }

    // When the line is free again.
    BoardTime freeAt() const { return m_free; }
    bool paced() const { return m_paced; }

private:
    bool m_paced;
    BoardTime m_free{};
};

} // namespace flashwriter::board
