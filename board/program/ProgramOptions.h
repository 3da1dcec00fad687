#pragma once

#include "board/BoardOptions.h"

#include <string>

namespace flashwriter::board {

// What the command line of virtual-board asks for.
struct ProgramOptions {
    BoardOptions board;
    std::string link;     // a symbolic link to the port, or empty
    std::string flashOut; // files to be written on exit, or empty
    std::string dataFlashOut;
    std::string transcript;
    bool once = false;   // exit after the first programming session
    bool strict = false; // an exit status tells when the host broke the protocol
};

// What the program's exit status says.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitViolations = 3;

// Reads the command line into the options. -1: go on; anything else: exit with it, everything has
// been said.
int parseCommandLine(int argc, const char* const* argv, ProgramOptions& options);

} // namespace flashwriter::board
