#pragma once

#include "tests/random/WriteModel.h"
#include "tests/simulation/SimulatedWrite.h"

#include <string>
#include <vector>

namespace flashwriter::random {

// What is wrong with what a write showed and left behind, whatever the board did: it has to be one
// of the allowed endings, told alike to everybody, in time. slack: how much later than the ending's
// own time it may be. Nothing when all is well.
std::vector<std::string> recordComplaints(const simulation::PortWrite& write,
                                          const std::vector<Ending>& allowed,
                                          simulation::VirtualTime slack);

} // namespace flashwriter::random
