#pragma once

#include <string>
#include <string_view>

namespace flashwriter {

// The text as UTF-8, with a question mark for every control character, line break and change of
// direction, and for every byte that is part of no character: names of files and of other people's
// processes must not move the cursor, or pass for lines of ours.
std::string printable(std::string_view text);

} // namespace flashwriter
