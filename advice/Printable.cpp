#include "advice/Printable.h"

#include <algorithm>
#include <array>

namespace flashwriter {

namespace {

// Characters, as UTF-8, that end lines (U+0085, U+2028, U+2029) or turn the direction of what
// stands around them (U+202A to U+202E, U+2066 to U+2069).
constexpr std::array<std::string_view, 12> TURNING_OR_BREAKING{
    "\xC2\x85",     "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAA", "\xE2\x80\xAB", "\xE2\x80\xAC",
    "\xE2\x80\xAD", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA7", "\xE2\x81\xA8", "\xE2\x81\xA9"};

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
