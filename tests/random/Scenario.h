#pragma once

#include "board/BoardOptions.h"
#include "tests/random/RandomFile.h"
#include "tests/simulation/SimulatedClock.h"

#include <cstdint>
#include <string>

namespace flashwriter::random {

// Everything that a random write begins with.
struct Scenario {
    std::uint32_t seed = 0;
    RandomFile file;
    std::uint8_t baudRate = 0;
    board::BoardOptions board;
    simulation::ClockOptions clock;
    std::uint32_t writes = 1; // one after the other, with one driver; faults count on over them

    // Nothing goes wrong but what the file and the flash bring.
    bool undisturbed() const;
    std::string description() const;
};

// A seed is one scenario for ever.
Scenario drawScenario(std::uint32_t seed);

} // namespace flashwriter::random
