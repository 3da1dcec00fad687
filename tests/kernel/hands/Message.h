#pragma once

#include <string>
#include <vector>

namespace flashwriter::kernel {

// What passes between the hands in a program and whoever moves them: one line each way, whose words
// are separated by tabs. In a word "\n", "\t" and "\\" stand for a line end, a tab and a backslash.
using Words = std::vector<std::string>;

// The line without its end. At least one word.
std::string lineOf(const Words& words);
Words wordsOf(const std::string& line);

// The first word of an answer: what was asked for follows, or why it was not to be had.
inline const char* const DONE = "ok";
inline const char* const REFUSED = "error";

} // namespace flashwriter::kernel
