#pragma once

namespace flashwriter {

// Reads which fonts the system has, as the toolkit does when it draws its first letter: a third of
// what the program's start takes, and nothing that has to wait for the window system. Any thread,
// before anything else asks for fonts.
void warmFonts();

} // namespace flashwriter
