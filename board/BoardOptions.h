#pragma once

#include "board/Fault.h"
#include "board/TargetOptions.h"

#include <vector>

namespace flashwriter::board {

// Everything that can be chosen about a virtual board.
struct BoardOptions {
    TargetOptions target;
    std::vector<Fault> faults;
    bool pace = true;     // bytes take the time that a wire takes for them
    bool realTime = true; // ask the system to wake the board first: a real one shares no processor
};

} // namespace flashwriter::board
