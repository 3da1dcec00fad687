#pragma once

#include <string>
#include <vector>

namespace flashwriter::kernel {

// A process to be started in the emulated machine.
struct Command {
    std::vector<std::string> arguments;   // the program's path, then what follows its name
    std::vector<std::string> environment; // NAME=value, on top of PATH and HOME
    unsigned int user = 0;                // whose rights it has; root's by default
    bool hasInput = false; // its standard input is fed by GuestProcess::input(), else it is empty
};

// As the body of a message, and back.
std::string encode(const Command& command);
Command decodeCommand(const std::string& body);

} // namespace flashwriter::kernel
