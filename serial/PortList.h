#pragma once

#include <string>
#include <vector>

namespace flashwriter {

// The paths of the serial ports that USB adapters have made, in alphabetical order: whatever in the
// directory begins with "cu.u", "ttyUSB" or "ttyACM". Empty when there is none, or no such
// directory. Opens nothing.
std::vector<std::string> portList(const std::string& directory = "/dev");

} // namespace flashwriter
