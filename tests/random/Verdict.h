#pragma once

#include "tests/random/Scenario.h"
#include "tests/simulation/SimulatedWrite.h"

#include <string>
#include <vector>

namespace flashwriter::random {

// What is wrong with a write of this scenario; nothing when all is well.
std::vector<std::string> complaints(const Scenario& scenario,
                                    const simulation::SimulatedWrite& write);

} // namespace flashwriter::random
