#pragma once

#include "board/BoardOptions.h"
#include "board/Protocol.h"
#include "tests/sequence/DriverRun.h"
#include "tests/simulation/SimulatedClock.h"

#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter::simulation {

// What a write in virtual time came to.
struct PortWrite {
    RunRecord record;
    VirtualTime duration{};     // of the whole write
    std::uint32_t openings = 0; // of the device, and its closings, while the driver is still there
    std::uint32_t closings = 0;
    std::uint32_t strayCalls = 0; // see Simulation
};

// Writes the file through a port, with the driver for the file's extension. Deterministic: the same
// arguments and a port that does the same give the same outcome.
PortWrite writeThrough(SimulatedPort& port, const ClockOptions& clock, const std::string& file,
                       std::uint8_t baudRate);

// And what it did to a virtual board.
struct SimulatedWrite : PortWrite {
    std::string transcript; // the board's, in virtual time
    std::size_t violations = 0;
    board::Bytes codeBefore;
    board::Bytes codeAfter;
    board::Bytes dataBefore;
    board::Bytes dataAfter;
    bool unpluggedBefore = false; // there was no port any more when it began
};

// Writes the file through a new board's port.
SimulatedWrite simulateWrite(const board::BoardOptions& options, const ClockOptions& clock,
                             const std::string& file, std::uint8_t baudRate);

// The same so many times, one after the other, with one driver and one board. The transcripts run
// on, everything else is each write's own.
std::vector<SimulatedWrite> simulateWrites(std::uint32_t count, const board::BoardOptions& options,
                                           const ClockOptions& clock, const std::string& file,
                                           std::uint8_t baudRate);

} // namespace flashwriter::simulation
