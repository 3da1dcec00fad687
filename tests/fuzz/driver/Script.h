// What an input of the fuzz target means: a header, then for each write of the program what the
// board and the adapter make of it. Behind its end the board is a good one, so an input only has to
// say what goes wrong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace flashwriter::fuzz {

// What a write leads to. The upper half of an answer's byte is a parameter, see LATER and MORE.
enum class Answer : std::uint8_t {
    good,      // what a good board answers
    silence,   // nothing
    raw,       // count, bytes: these
    framed,    // count, bytes: these in a reply's frame
    changed,   // place, value: the good answer, a byte of it changed by that value
    status,    // value: a status frame of it
    partly,    // count: the device takes only so many bytes
    refused,   // the device takes nothing and says so
    doubled,   // the good answer twice
    truncated, // count: so many bytes of the good answer
    unplugged, // from now on nothing works
    late,      // milliseconds / 4: the good answer after that time
    lied, // place, value: a data byte of the good answer's last frame changed, with a fitting sum
};
inline constexpr std::uint8_t ANSWERS = 13;

inline constexpr std::uint8_t LATER = 0x70; // in an answer's byte: of 16 ms each, how much later
inline constexpr std::uint8_t MORE = 0x80;  // and another answer to the same write follows

// The bytes of an input, one after the other.
class Script {
public:
    explicit Script(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    bool atEnd() const { return m_bytes.empty(); }
    // The next byte; 0 at the end.
    std::uint8_t next() {
        if (m_bytes.empty()) {
            return 0;
        }
        const std::uint8_t byte = m_bytes.front();
        m_bytes = m_bytes.subspan(1);
        return byte;
    }
    // The next bytes, as many as there are up to count.
    std::span<const std::uint8_t> next(std::size_t count) {
        const auto bytes = m_bytes.first(count < m_bytes.size() ? count : m_bytes.size());
        m_bytes = m_bytes.subspan(bytes.size());
        return bytes;
    }

private:
    std::span<const std::uint8_t> m_bytes;
};

// The first bytes of an input.
struct ScriptHeader {
    explicit ScriptHeader(Script& script)
        : image(script.next()), speed(script.next()), failingLines(script.next()),
          more(script.next()) {}

    std::uint8_t image;        // which one, see FuzzedImages.h
    std::uint8_t speed;        // index, modulo 4
    std::uint8_t failingLines; // bit n: the n-th request for the lines fails
    std::uint8_t more;

    bool speedFails() const { return (more & 1) != 0; }
    // The wall clock is set after this write, 0 for never; forwards or backwards.
    std::uint32_t clockJumpsAfter() const { return more >> 4; }
    bool clockGoesBack() const { return (more & 2) != 0; }
};

} // namespace flashwriter::fuzz
