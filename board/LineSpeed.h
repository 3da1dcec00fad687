#pragma once

#include <cstdint>

namespace flashwriter::board {

// The speed that the other side of this pseudo-terminal has set, in bits per second; any speed, not
// only the named ones. 0 when it cannot be read. It has a source file of its own because the header
// that knows how cannot stand beside <termios.h>.
std::uint32_t readLineSpeed(int master);

} // namespace flashwriter::board
