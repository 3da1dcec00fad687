#pragma once

#include "board/BoardOptions.h"
#include "tests/random/RandomFile.h"
#include "tests/simulation/SimulatedClock.h"

#include <cstdint>
#include <string>

namespace flashwriter::random {

// Everything that one random write begins with.
struct Scenario {
    std::uint32_t seed = 0;
    RandomFile file;
    std::uint8_t baudRate = 0;
    board::BoardOptions board;
    simulation::ClockOptions clock;

    // Nothing goes wrong but what the file itself brings.
    bool undisturbed() const;
    std::string description() const;
};

// A seed is one scenario for ever.
Scenario drawScenario(std::uint32_t seed);

} // namespace flashwriter::random
