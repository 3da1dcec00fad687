#pragma once

#include "board/Transcript.h"

#include <cstddef>

namespace flashwriter::board {

// Whether the program's machine, or an emulated one, was held up for longer than a board waits in
// mode entry or a program for an answer: from that record of the transcript on, and by what the
// board saw. A write may fail by it, as on any computer that is too slow; it tells nothing of the
// program.
bool wasHeldUp(const Transcript& transcript, std::size_t from);

} // namespace flashwriter::board
