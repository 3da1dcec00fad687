// What a write may come to, worked out a second time: how far it can get, and what it has then
// shown.
#pragma once

#include "tests/random/Scenario.h"
#include "tests/sequence/DriverRun.h"

#include <string>
#include <vector>

namespace flashwriter::random {

// One way for a write to end.
struct Ending {
    std::string stage;
    std::vector<ResultCode> codes; // any of these
    std::vector<std::string> log;  // all lines but the last two: see below
    bool resultIsLogged = false;   // the text of the code follows them, before the final line
    ProgressCalls progress;
};

// All ways in which a write of this scenario may end, if the board, the adapter and the clock do
// whatever they like. The port can be opened in each.
std::vector<Ending> allowedEndings(const Scenario& scenario);

// What the write comes to when nothing goes wrong but what the file brings.
ResultCode undisturbedResult(const Scenario& scenario);

// The virtual time that the longest possible write of the scenario takes: every attempt of every
// exchange with its pauses and time-outs.
simulation::VirtualTime longestDuration(const Scenario& scenario);

} // namespace flashwriter::random
