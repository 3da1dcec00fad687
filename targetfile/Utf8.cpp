#include "targetfile/Utf8.h"

#include <cstring>

namespace flashwriter {

namespace {

constexpr std::uint64_t highestBits = 0x8080808080808080;

// Sixty-four bytes at a time: the compiler turns the inner loop into a few wide instructions.
std::size_t asciiBlocks(const std::uint8_t* text, std::size_t length) {
    constexpr std::size_t words = 8;
    constexpr std::size_t block = words * sizeof(std::uint64_t);
    std::size_t done = 0;
    for (; length - done >= block; done += block) {
        std::uint64_t any = 0;
        for (std::size_t word = 0; word < words; ++word) {
            std::uint64_t bytes = 0;
            std::memcpy(&bytes, text + done + (word * sizeof(bytes)), sizeof(bytes));
            any |= bytes;
        }
        if ((any & highestBits) != 0) {
            break;
        }
    }
    return done;
}

// How many bytes from the beginning are ASCII.
std::size_t asciiLength(const std::uint8_t* text, std::size_t length) {
    std::size_t done = asciiBlocks(text, length);
    while (done < length && text[done] < 0x80) {
        ++done;
    }
    return done;
}

} // namespace

bool isAscii(const std::uint8_t* text, std::size_t length) {
    return asciiLength(text, length) == length;
}

bool Utf8Validator::begin(std::uint8_t lead) {
    if (lead < 0xC2 || lead > 0xF4) {
        return false; // a continuation byte, or the lead of an overlong form or of too high a value
    }
    m_missing = lead < 0xE0 ? 1 : (lead < 0xF0 ? 2 : 3);
    if (lead == 0xE0) {
        m_lowest = 0xA0; // lower ones fit into two bytes
    } else if (lead == 0xED) {
        m_highest = 0x9F; // higher ones are surrogates
    } else if (lead == 0xF0) {
        m_lowest = 0x90; // lower ones fit into three bytes
    } else if (lead == 0xF4) {
        m_highest = 0x8F; // higher ones are above 10FFFF
    }
    return true;
}

bool Utf8Validator::feed(const std::uint8_t* text, std::size_t length) {
    std::size_t done = 0;
    while (done < length) {
        if (m_missing == 0) {
            done += asciiLength(text + done, length - done);
            if (done < length && !begin(text[done++])) {
                return false;
            }
            continue;
        }
        const std::uint8_t byte = text[done++];
        if (byte < m_lowest || byte > m_highest) {
            return false;
        }
        m_lowest = 0x80;
        m_highest = 0xBF;
        --m_missing;
    }
    return true;
}

} // namespace flashwriter
