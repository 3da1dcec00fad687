#pragma once

#include "sequence/context/ResultCode.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace flashwriter::random {

// What the runs so far came to. Plain numbers, because processes share it.
struct Tally {
    std::uint32_t seed = 0; // of the run under way
    std::uint32_t runs = 0; // that have ended
    std::uint32_t failures = 0;
    std::array<std::uint32_t, 64> outcomes{}; // by result code, see codeOf()

    static std::size_t indexOf(ResultCode code) { return (code >> 12 & 3) * 16 + (code & 15); }
    static ResultCode codeOf(std::size_t index) { return index / 16 << 12 | index % 16; }
    void add(const Tally& other);
    // "0x0000: 12, 0x2005: 3"
    std::string outcomesText() const;
};

// Runs the scenarios of this many seeds from the first on, in this many processes side by side, and
// prints a report for each that fails. A process that dies counts as a failure of the run it was
// at, and its other runs are not made.
Tally runJobs(std::uint32_t firstSeed, std::uint32_t runs, std::uint32_t jobs);

} // namespace flashwriter::random
