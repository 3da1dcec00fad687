#pragma once

#include "board/BoardOptions.h"
#include "board/Protocol.h"
#include "tests/sequence/DriverRun.h"
#include "tests/simulation/SimulatedClock.h"

#include <cstdint>
#include <string>

namespace flashwriter::simulation {

// What a write in virtual time came to.
struct SimulatedWrite {
    RunRecord record;
    VirtualTime duration{}; // of the whole write
    std::string transcript; // the board's, in virtual time
    std::size_t violations = 0;
    board::Bytes codeBefore;
    board::Bytes codeAfter;
    board::Bytes dataBefore;
    board::Bytes dataAfter;
    std::uint32_t openings = 0; // of the device
    std::uint32_t closings = 0;
    std::uint32_t strayCalls = 0; // see Simulation
};

// Writes the file to a new board, with the driver for the file's extension. Deterministic: the same
// arguments give the same outcome.
SimulatedWrite simulateWrite(const board::BoardOptions& options, const ClockOptions& clock,
                             const std::string& file, std::uint8_t baudRate);

} // namespace flashwriter::simulation
