#include "targetfile/MotLine.h"

#include <algorithm>
#include <array>

namespace flashwriter {

namespace {

constexpr std::uint8_t noDigit = 0x80;

constexpr std::array<std::uint8_t, 256> digitValues() {
    std::array<std::uint8_t, 256> values{};
    values.fill(noDigit);
    for (std::uint8_t i = 0; i < 10; ++i) {
        values.at(static_cast<std::size_t>('0' + i)) = i;
    }
    for (std::uint8_t i = 0; i < 6; ++i) {
        const auto value = static_cast<std::uint8_t>(10 + i);
        values.at(static_cast<std::size_t>('A' + i)) = value;
        values.at(static_cast<std::size_t>('a' + i)) = value;
    }
    return values;
}

constexpr std::array<std::uint8_t, 256> digitValue = digitValues();

bool isContinuation(std::uint8_t byte) {
    return (byte & 0xC0U) == 0x80U;
}

} // namespace

const std::uint8_t* MotLine::advance(const std::uint8_t* from, std::size_t characters) const {
    while (characters > 0 && from != m_end) {
        ++from;
        while (from != m_end && isContinuation(*from)) {
            ++from;
        }
        --characters;
    }
    return from;
}

// Digits are single bytes, and the first character of several ends the scan: so from here on, bytes
// are characters in any line.
std::uint32_t MotLine::scan(const std::uint8_t* from, std::size_t length) const {
    const std::uint8_t* const end = plainAdvance(from, length);
    std::uint32_t value = 0;
    for (; from != end && digitValue[*from] != noDigit; ++from) {
        if (value > UINT32_MAX >> 4U) {
            return UINT32_MAX;
        }
        value = (value << 4U) | digitValue[*from];
    }
    return value;
}

void MotLine::hexBytes(std::size_t index, std::size_t count, std::uint8_t* bytes) const {
    const std::uint8_t* from = at(index);
    std::size_t i = 0;
    if (m_isAscii) {
        const std::size_t whole = std::min(count, static_cast<std::size_t>(m_end - from) / 2);
        for (; i < whole; ++i, from += 2) {
            const unsigned high = digitValue[from[0]];
            const unsigned low = digitValue[from[1]];
            const bool digits = ((high | low) & noDigit) == 0;
            bytes[i] = static_cast<std::uint8_t>(digits ? high << 4U | low : scan(from, 2));
        }
    }
    for (; i < count; ++i, from = advance(from, 2)) {
        bytes[i] = static_cast<std::uint8_t>(scan(from, 2));
    }
}

} // namespace flashwriter
