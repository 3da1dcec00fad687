#include "advice/Printable.h"

#include "targetfile/Utf8.h"

#include <algorithm>
#include <array>

namespace flashwriter {

namespace {

// Characters whose UTF-8 begins with the same bytes, by their last bytes.
struct Characters {
    std::string_view beginning;
    unsigned char first;
    unsigned char last;
};

// The controls from U+0080 to U+009F, and those that end lines (U+2028, U+2029) or turn the
// direction of what stands around them (U+202A to U+202E, U+2066 to U+2069).
constexpr std::array<Characters, 3> COMMANDING{
    {{"\xC2", 0x80, 0x9F}, {"\xE2\x80", 0xA8, 0xAE}, {"\xE2\x81", 0xA6, 0xA9}}};

bool isCommand(std::string_view character) {
    if (character.size() == 1) {
        return static_cast<unsigned char>(character.front()) < ' ' || character.front() == 0x7F;
    }
    const auto last = static_cast<unsigned char>(character.back());
    return std::ranges::any_of(COMMANDING, [&](const Characters& some) {
        return character.size() == some.beginning.size() + 1 &&
               character.starts_with(some.beginning) && last >= some.first && last <= some.last;
    });
}

// How many bytes the character at the beginning of the text has; 0 when none begins there.
std::size_t sizeOfCharacter(std::string_view text) {
    Utf8Validator validator;
    for (std::size_t size = 1; size <= text.size(); ++size) {
        const auto byte = static_cast<std::uint8_t>(text[size - 1]);
        if (!validator.feed(&byte, 1)) {
            return 0;
        }
        if (validator.complete()) {
            return size;
        }
    }
    return 0;
}

} // namespace

std::string printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t size = sizeOfCharacter(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(size, 1));
        result += size == 0 || isCommand(character) ? std::string_view("?") : character;
        text.remove_prefix(character.size());
    }
    return result;
}

} // namespace flashwriter
