#pragma once

#include "board/Transcript.h"

#include <cstdint>
#include <vector>

namespace flashwriter::bench {

// The seconds that the frames of a write, of both sides, occupy the wire: the least that any host
// needs for them, were target and host infinitely fast. 11 bit times to a byte.
double wireSeconds(const board::Transcript& transcript);

// For each data frame after the first: the microseconds by which it left later than the pause
// before each frame demands. The pause ends when the wall clock's milliseconds have moved on by
// two since the reply's last bit; where in a millisecond that bit fell is not the host's doing.
std::vector<std::int64_t> overheadsAbovePause(const board::Transcript& transcript);

// The value that so many percent of the values do not exceed; 0 when there are none.
std::int64_t percentile(std::vector<std::int64_t> values, unsigned percent);

} // namespace flashwriter::bench
