#include "advice/Printable.h"

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

// Those that end lines (U+0085, U+2028, U+2029) or turn the direction of what stands around them
// (U+202A to U+202E, U+2066 to U+2069).
constexpr std::array<Characters, 3> TURNING_OR_BREAKING{
    {{"\xC2", 0x85, 0x85}, {"\xE2\x80", 0xA8, 0xAE}, {"\xE2\x81", 0xA6, 0xA9}}};

// How many bytes at the beginning of the text are one of them.
std::size_t sizeOfUnwanted(std::string_view text) {
    for (const Characters& characters : TURNING_OR_BREAKING) {
        const std::size_t size = characters.beginning.size();
        if (text.starts_with(characters.beginning) && text.size() > size) {
            const auto last = static_cast<unsigned char>(text[size]);
            return last >= characters.first && last <= characters.last ? size + 1 : 0;
        }
    }
    return 0;
}

bool isControl(char character) {
    return (character >= 0 && character < ' ') || character == 0x7F;
}

} // namespace

std::string printable(std::string_view text) {
    std::string result(text);
    std::ranges::replace_if(result, isControl, '?');
    for (std::size_t at = 0; at < result.size(); ++at) {
        if (const std::size_t size = sizeOfUnwanted(std::string_view(result).substr(at))) {
            result.replace(at, size, "?");
        }
    }
    return result;
}

} // namespace flashwriter
