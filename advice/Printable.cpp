#include "advice/Printable.h"

#include <algorithm>
#include <array>

namespace flashwriter {

namespace {

// Characters of UTF-8 that end lines, or turn the direction of what stands around them.
constexpr std::array<std::string_view, 12> TURNING_OR_BREAKING{
    "\u0085", "\u2028", "\u2029", "\u202A", "\u202B", "\u202C",
    "\u202D", "\u202E", "\u2066", "\u2067", "\u2068", "\u2069"};

bool isControl(char character) {
    return (character >= 0 && character < ' ') || character == 0x7F;
}

} // namespace

std::string printable(std::string_view text) {
    std::string result(text);
    std::ranges::replace_if(result, isControl, '?');
    for (const std::string_view character : TURNING_OR_BREAKING) {
        for (auto at = result.find(character); at != std::string::npos;
             at = result.find(character, at)) {
            result.replace(at, character.size(), "?");
        }
    }
    return result;
}

} // namespace flashwriter
