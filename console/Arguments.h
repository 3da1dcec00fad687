#pragma once

#include "sequence/context/ContextInfo.h"

#include <string>
#include <variant>

namespace flashwriter {

// Why there is nothing to write: the program prints the text and ends with the status. Text with
// status 0 was asked for and belongs to standard output, any other to standard error.
struct NoWrite {
    int status = 0;
    std::string text;
};

inline constexpr int WRONG_ARGUMENTS = 2;

// Reads the command line. A context has speed, port and file filled in and zeros everywhere else.
// Nothing is opened or looked at here.
std::variant<_CONTEXTINFO, NoWrite> parseArguments(int argc, const char* const* argv);

} // namespace flashwriter
