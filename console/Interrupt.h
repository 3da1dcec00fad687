// What happens when somebody ends the program while it writes.
#pragma once

#include "sequence/context/ResultCode.h"

#include <cstdint>

namespace flashwriter {

// From now on the program says, before SIGINT, SIGTERM or SIGHUP ends it at once (128 + n to a
// shell), on standard error what the board is left with; the system closes the port. A signal that
// is ignored already (nohup does that) stays ignored. isTerminal: the line is to begin on a fresh
// line of a terminal.
void installInterruptHandlers(bool isTerminal);

// Keep up with what is true of the board. The thread that writes calls them before it goes on; it
// does not come back from noteStage() while the program ends.
void noteStage(std::int32_t step); // see _PROGRESSINIFO
void noteOutcome(ResultCode result);

// What would be said now, with its line break.
const char* interruptMessage();

} // namespace flashwriter
