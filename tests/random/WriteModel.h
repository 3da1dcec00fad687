// What a write may come to, worked out a second time: how far it can get, and what it has then
// shown.
#pragma once

#include "sequence/context/ResultCode.h"
#include "tests/sequence/DriverRun.h"
#include "tests/simulation/SimulatedPort.h"

#include <cstddef>
#include <string>
#include <vector>

namespace flashwriter::random {

// What the end of a write depends on beside the board's answers.
struct WriteFacts {
    bool portIsThere = true;
    ResultCode read = RESULT_OK; // what reading the file comes to; if well, then this:
    std::size_t imageSize = 0;   // bytes of code flash
    bool hasData = false;        // and there is data for data flash
    std::size_t codeFlashSize = 0;
    simulation::VirtualTime longestLook{}; // that one reading of the clock takes
};

// One way for a write to end.
struct Ending {
    std::string stage;
    std::vector<ResultCode> codes; // any of these
    std::vector<std::string> log;  // all lines but the last two: see below
    bool resultIsLogged = false;   // the text of the code follows them, before the final line
    ProgressCalls progress;
    // The virtual time that the longest write to this end takes: every attempt of every exchange,
    // with all pauses and time-outs.
    simulation::VirtualTime longest{};
};

// All ways in which such a write may end, if the board, the adapter and the clock do
// whatever they like.
std::vector<Ending> allowedEndings(const WriteFacts& facts);

// What file and sizes come to: the write's result before anything is written, RESULT_OK when it is
// to be written.
ResultCode resultBeforeWriting(const WriteFacts& facts);

} // namespace flashwriter::random
