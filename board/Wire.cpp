#include "board/Wire.h"

#include <algorithm>

namespace flashwriter::board {

BoardTime wireTime(std::size_t bytes, std::uint32_t bitsPerSecond) {
    constexpr std::uint64_t kNanosecondsPerSecond = 1000000000;
    const std::uint64_t bits = std::uint64_t{bytes} * kBitsPerByte;
    return BoardTime(
        static_cast<BoardTime::rep>(bits * kNanosecondsPerSecond / std::max(bitsPerSecond, 1U)));
}

bool speedsAgree(std::uint32_t one, std::uint32_t other) {
    const std::uint64_t difference = one > other ? one - other : other - one;
    return difference * 100 <= std::uint64_t{other} * 3;
}

std::uint8_t garble(std::uint8_t byte) {
    // What lies in the low bits is lost in the first samples; the high bits stay set by the stop
    // bit.
    return static_cast<std::uint8_t>(0xE0U | (byte >> 3U));
}

BoardTime Wire::occupy(BoardTime from, std::size_t bytes, std::uint32_t bitsPerSecond) {
    m_free = std::max(m_free, from);
    if (m_paced) {
        m_free += wireTime(bytes, bitsPerSecond);
    }
    return m_free;
}

} // namespace flashwriter::board
