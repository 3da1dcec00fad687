// A second reading of what a board sends: all of it at once, character by character.
#pragma once

#include <QString>

#include <string>
#include <string_view>
#include <vector>

namespace flashwriter::fuzz {

// The text of pieces that come one after the other: a NUL ends what counts of its piece, and no
// character goes on behind it. A byte that belongs to no character stands as U+FFFD, a line end
// "\r\n" or "\r" as "\n". The bytes of a character that is not complete at the end count as none.
QString textOf(const std::vector<std::string_view>& pieces);

} // namespace flashwriter::fuzz
