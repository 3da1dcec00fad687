#include "tests/unit/targetfile/MotText.h"

#include "targetfile/Utf8.h"

#include <array>
#include <cstdio>

namespace flashwriter {

namespace {

std::string hexDigits(std::uint32_t value, int digits) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%0*X", digits, value);
    return text.data();
}

} // namespace

Bytes counting(std::size_t size, std::uint8_t first) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<std::uint8_t>((first + i) % 0xFF);
    }
    return bytes;
}

std::string motLine(int type, std::uint32_t address, const Bytes& data, std::uint32_t byteCount) {
    std::uint32_t sum = byteCount;
    for (std::uint32_t rest = address; rest != 0; rest >>= 8U) {
        sum += rest & 0xFFU;
    }
    std::string line = "S";
    line += hexDigits(static_cast<std::uint32_t>(type), 1);
    line += hexDigits(byteCount, 2);
    line += hexDigits(address, (2 * type) + 2);
    for (const std::uint8_t byte : data) {
        line += hexDigits(byte, 2);
        sum += byte;
    }
    return line + hexDigits(~sum & 0xFFU, 2);
}

std::string motLine(int type, std::uint32_t address, const Bytes& data) {
    const auto size = static_cast<std::uint32_t>(data.size());
    return motLine(type, address, data, size + static_cast<std::uint32_t>(type) + 2);
}

std::string motText(std::initializer_list<std::string_view> lines, std::string_view lineEnd) {
    std::string text;
    for (const std::string_view line : lines) {
        text.append(line).append(lineEnd);
    }
    return text;
}

MotLine lineOf(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    return {bytes, text.size(), isAscii(bytes, text.size())};
}

} // namespace flashwriter
