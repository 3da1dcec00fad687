#pragma once

namespace flashwriter::board {

// Makes the calling thread wake up promptly: timers to the nanosecond and, when asked for and
// allowed, a place before all other threads. A real board has a processor of its own. What the
// system refuses is done without.
void makeThreadPrompt(bool realTime);

} // namespace flashwriter::board
