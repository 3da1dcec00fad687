#include "tests/fuzz/MonitorModel.h"

namespace flashwriter::fuzz {

namespace {

constexpr char32_t NO_CHARACTER = 0xFFFD;

// The bytes of a code point, written out.
std::string encoded(char32_t point) {
    const auto tail = [point](int shift) {
        return static_cast<char>(0x80 | ((point >> shift) & 0x3F));
    };
    if (point < 0x80) {
        return {static_cast<char>(point)};
    }
    if (point < 0x800) {
        return {static_cast<char>(0xC0 | (point >> 6)), tail(0)};
    }
    if (point < 0x10000) {
        return {static_cast<char>(0xE0 | (point >> 12)), tail(6), tail(0)};
    }
    return {static_cast<char>(0xF0 | (point >> 18)), tail(12), tail(6), tail(0)};
}

bool isCharacter(char32_t point) {
    return point < 0xD800 || (point > 0xDFFF && point < 0x110000);
}

// The code point whose bytes stand at the beginning of text, by trying each length: take the bits
// that a character of so many bytes has, and see whether writing them out gives these bytes back.
char32_t firstOf(std::string_view text, std::size_t& size) {
    for (size = 1; size <= 4 && size <= text.size(); ++size) {
        char32_t point = static_cast<unsigned char>(text[0]);
        point &= size == 1 ? 0x7FU : 0x7FU >> size;
        for (std::size_t i = 1; i < size; ++i) {
            point = (point << 6) | (static_cast<unsigned char>(text[i]) & 0x3FU);
        }
        if (isCharacter(point) && encoded(point) == text.substr(0, size)) {
            return point;
        }
    }
    size = 1;
    return NO_CHARACTER;
}

// Whether the bytes are the first of more that a character's lead byte announces.
bool isBegun(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::size_t size = lead < 0xC2 || lead > 0xF4 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    for (const char byte : text.substr(1)) {
        if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80) {
            return false;
        }
    }
    return text.size() < size;
}

// Decodes one stretch of bytes; isLast: nothing comes behind it.
std::u32string decoded(std::string_view bytes, bool isLast) {
    std::u32string text;
    while (!bytes.empty()) {
        if (isLast && isBegun(bytes)) {
            break;
        }
        std::size_t size = 0;
        text.push_back(firstOf(bytes, size));
        bytes.remove_prefix(size);
    }
    return text;
}

} // namespace

QString textOf(const std::vector<std::string_view>& pieces) {
    std::u32string text;
    std::string stretch;
    for (const std::string_view piece : pieces) {
        const std::size_t end = piece.find('\0');
        stretch += piece.substr(0, end);
        if (end != std::string_view::npos) {
            text += decoded(stretch, false);
            stretch.clear();
        }
    }
    text += decoded(stretch, true);
    QString plain;
    for (const char32_t point : text) {
        plain += QChar::fromUcs4(point); // all at once would lose a byte order mark
    }
    return plain.replace("\r\n", "\n").replace('\r', '\n');
}

} // namespace flashwriter::fuzz
