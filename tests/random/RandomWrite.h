#pragma once

#include "sequence/context/ResultCode.h"

#include <cstdint>
#include <string>

namespace flashwriter::random {

struct RandomWriteOutcome {
    ResultCode result = RESULT_OK; // of the last write
    std::string report; // what is wrong, with all that there is to know; empty when all is well
};

// Draws a scenario from the seed, runs it and judges it. Also looks for threads and descriptors
// that the write left behind in this process.
RandomWriteOutcome runRandomWrite(std::uint32_t seed);

} // namespace flashwriter::random
