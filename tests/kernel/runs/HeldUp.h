#pragma once

#include "board/Transcript.h"

#include <cstddef>

namespace flashwriter::kernel {

// Whether the emulated machine was held up, by whatever else this one does, for longer than a board
// waits in mode entry or a program for an answer: from that record of the transcript on, and by
// what the board saw. A write may fail by it, as on any computer that is too slow; it tells nothing
// of drivers.
bool wasHeldUp(const board::Transcript& transcript, std::size_t from);

} // namespace flashwriter::kernel
