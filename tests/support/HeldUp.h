#pragma once

#include "board/Transcript.h"

#include <cstddef>

namespace flashwriter::board {

// Whether the host was late for longer than a board waits in mode entry or a program for an answer:
// from that record of the transcript on, and by what the board saw. A write may fail by it. The
// board cannot tell a machine that was held up from a program that dawdles, so whoever excuses a
// write for it has to bound how many.
bool wasHeldUp(const Transcript& transcript, std::size_t from);

// Whether a write that has failed, of which this is the transcript, is to be made anew: it was held
// up, and is the first in this process. Prints that it is made anew.
bool isMadeAnew(const Transcript& transcript);

} // namespace flashwriter::board
