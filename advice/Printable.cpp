#include "advice/Printable.h"

#include <algorithm>

namespace flashwriter {

std::string printable(std::string_view text) {
    std::string result(text);
    std::ranges::replace_if(
        result,
        [](char character) { return (character >= 0 && character < ' ') || character == 0x7F; },
        '?');
    return result;
}

} // namespace flashwriter
