// One line of S-record text, looked at where it lies.
#pragma once

#include <cstddef>
#include <cstdint>

namespace flashwriter {

// A view of one line of valid UTF-8, without its line feed; borrows the text. Positions and lengths
// count characters (code points), not bytes. Any position may be asked for: what lies beyond the
// line's end is empty text. Text that is not valid UTF-8 gives some values or other, safely.
class MotLine {
public:
    MotLine() = default;

    // isAscii says that the line holds nothing but ASCII: positions then need not be searched for.
    MotLine(const std::uint8_t* text, std::size_t length, bool isAscii)
        : m_text(text), m_end(text + length), m_isAscii(isAscii) {}

    bool isLongerThan(std::size_t characters) const { return at(characters) != m_end; }

    bool startsWith(char ascii) const {
        return m_text != m_end && *m_text == static_cast<std::uint8_t>(ascii);
    }

    // The value of the hexadecimal digits that begin at position index, at most length of them and
    // up to the first character that is none; 0 when there is none. More digits than 32 bits hold
    // give 0xFFFFFFFF.
    std::uint32_t hex(std::size_t index, std::size_t length) const {
        return scan(at(index), length);
    }

    // Stores count bytes into bytes, which the caller owns: byte i is hex(index + 2 * i, 2).
    void hexBytes(std::size_t index, std::size_t count, std::uint8_t* bytes) const;

private:
    const std::uint8_t* at(std::size_t index) const {
        return m_isAscii ? plainAdvance(m_text, index) : advance(m_text, index);
    }
    const std::uint8_t* plainAdvance(const std::uint8_t* from, std::size_t characters) const {
        const auto left = static_cast<std::size_t>(m_end - from);
        return from + (characters < left ? characters : left);
    }
    const std::uint8_t* advance(const std::uint8_t* from, std::size_t characters) const;
    std::uint32_t scan(const std::uint8_t* from, std::size_t length) const;

    const std::uint8_t* m_text = nullptr;
    const std::uint8_t* m_end = nullptr;
    bool m_isAscii = true;
};

} // namespace flashwriter
