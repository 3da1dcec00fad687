#pragma once

#include <string>
#include <string_view>

namespace flashwriter {

// The text with a question mark for every control character, line break and change of
// direction: names of files and of other people's
// processes must not move the cursor, or pass for lines of ours.
std::string printable(std::string_view text);

} // namespace flashwriter
