#pragma once

#include <optional>
#include <vector>

namespace flashwriter::testing {

// The shell's commands that the program lists serial ports with; without a value the system's own.
extern std::optional<std::vector<const char*>> portCommands;

} // namespace flashwriter::testing
