#include "tests/unit/targetfile/MotGenerator.h"

#include "tests/unit/targetfile/MotText.h"

#include <algorithm>
#include <array>

namespace flashwriter {

namespace {

constexpr std::array<const char*, 7> wideCharacters = {
    "é", "ー", "\xF0\x9F\x98\x80", "\xEF\xBB\xBF", "\xC2\x80", "\xEE\x80\x80", "\xF4\x8F\xBF\xBF"};
constexpr std::array<const char*, 7> badBytes = {
    "\xFF", "\x80", "\xC0\xAF", "\xED\xA0\x80", "\xE0\x80\x80", "\xE3\x81", "\xF4\x90\x80\x80"};
constexpr std::array<char, 8> strangers = {'G', ' ', '\r', '\t', 'x', 'S', '\n', '\0'};

} // namespace

// Not a standard distribution: a seed must mean the same file with every standard library. And with
// every compiler, so no two numbers are drawn in the arguments of one call.
std::uint32_t MotGenerator::number(std::uint32_t below) {
    return static_cast<std::uint32_t>(m_random()) % below;
}

std::uint32_t MotGenerator::address(int type) {
    if (type != 1 && once(6 * m_rarity)) { // around the start of data flash
        return 0xF0FF0 + number(0x18);
    }
    if (type == 3 && once(10 * m_rarity)) { // around the end of 32 bits
        return 0xFFFFFF00U + number(0x100);
    }
    if (type == 3 && once(20 * m_rarity)) { // around the largest extent
        return 0xFFFF00 + number(0x200);
    }
    if (type != 1 && once(4)) {
        return 0xF1000 + number(0x400);
    }
    return number(once(8) ? 0x10000 : 0x200);
}

std::string MotGenerator::record() {
    const int type = 1 + static_cast<int>(number(3));
    const std::uint32_t size = once(10) ? number(251) : number(20);
    const Bytes data = counting(size, static_cast<std::uint8_t>(number(250)));
    std::uint32_t byteCount = size + static_cast<std::uint32_t>(type) + 2;
    if (once(4 * m_rarity)) {
        byteCount = once(2) ? number(256) : number(8);
    }
    std::string text = motLine(type, address(type), data, byteCount);
    if (once(4)) {
        std::ranges::transform(text.begin() + 1, text.end(), text.begin() + 1,
                               [](char c) { return c >= 'A' ? static_cast<char>(c | 0x20) : c; });
    }
    return text;
}

void MotGenerator::spoil(std::string& text) {
    const std::size_t place = number(static_cast<std::uint32_t>(text.size()) + 1);
    switch (number(4)) {
    case 0:
        text.insert(place, wideCharacters.at(number(wideCharacters.size())));
        break;
    case 1:
        text.insert(place, 1, strangers.at(number(strangers.size())));
        break;
    case 2:
        text.resize(place);
        break;
    default:
        if (place < text.size()) {
            text[place] = static_cast<char>(' ' + number(0x5F));
        }
    }
}

std::string MotGenerator::line() {
    if (once(8)) {
        const std::string other = once(2) ? "S0" : "S9";
        return other + std::string(number(14), '0');
    }
    if (once(20 * m_rarity)) {
        return std::string{}.append(number(14), '#');
    }
    std::string text = record();
    if (once(30)) {
        const char filler = once(2) ? 'A' : ' ';
        text.append(2000 + number(1000), filler);
    }
    while (once(1 + m_rarity)) {
        spoil(text);
    }
    return text;
}

std::string MotGenerator::file() {
    m_rarity = 1U << number(8);
    const std::string lineEnd = once(3) ? "\r\n" : "\n";
    std::string text = once(6) ? "\xEF\xBB\xBF" : "";
    for (std::uint32_t lines = number(20); lines > 0; --lines) {
        text += line();
        text += lines == 1 && once(2) ? "" : lineEnd;
    }
    if (once(12)) {
        const std::size_t place = number(static_cast<std::uint32_t>(text.size()) + 1);
        text.insert(place, badBytes.at(number(badBytes.size())));
    }
    return text;
}

} // namespace flashwriter
