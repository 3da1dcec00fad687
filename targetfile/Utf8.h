// The little of UTF-8 that S-record text needs: whether it is valid, and whether it is plain ASCII.
#pragma once

#include <cstddef>
#include <cstdint>

namespace flashwriter {

// Whether no byte of text has its highest bit set.
bool isAscii(const std::uint8_t* text, std::size_t length);

// Judges a text that arrives in pieces. Not valid are stray or missing continuation bytes, overlong
// forms, encoded surrogates and values above 10FFFF.
class Utf8Validator {
public:
    // Judges the next length bytes. False once the text is found not valid; it is over then.
    bool feed(const std::uint8_t* text, std::size_t length);

    // Whether what was fed so far does not end inside a character.
    bool complete() const { return m_missing == 0; }

private:
    bool begin(std::uint8_t lead);

    int m_missing = 0; // continuation bytes that the character begun still needs
    // What the next of them may be: some lead bytes narrow the first one.
    std::uint8_t m_lowest = 0x80;
    std::uint8_t m_highest = 0xBF;
};

} // namespace flashwriter
