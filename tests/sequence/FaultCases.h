// Every kind of fault that a small write can meet.
#pragma once

#include "board/Fault.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace flashwriter {

struct FaultCase {
    std::string name;
    board::FaultKind kind;
    std::int64_t parameter;
    std::uint32_t frames; // how many frames of the kind that it counts a write has
};

inline void PrintTo(const FaultCase& row, std::ostream* out) {
    *out << row.name;
}

// What the board answers and hears when one dirty block is written, see FailedWriteTest.
inline constexpr std::uint32_t REPLIES = 14;
inline constexpr std::uint32_t HOST_FRAMES = 11;

inline std::vector<FaultCase> everyFault() {
    using board::Fault;
    using board::FaultKind;
    return {
        {"Silence", FaultKind::silence, Fault::kDefault, REPLIES},
        {"ShortDelay", FaultKind::delay, 50, REPLIES},
        {"LongDelay", FaultKind::delay, 350, REPLIES},
        {"WrongSum", FaultKind::wrongSum, Fault::kDefault, REPLIES},
        {"LongerLen", FaultKind::wrongLength, 1, REPLIES},
        {"ShorterLen", FaultKind::wrongLength, -1, REPLIES},
        {"WrongStart", FaultKind::wrongStart, Fault::kDefault, REPLIES},
        {"WrongEnd", FaultKind::wrongEnd, Fault::kDefault, REPLIES},
        {"Truncated", FaultKind::truncated, Fault::kDefault, REPLIES},
        {"Doubled", FaultKind::doubled, Fault::kDefault, REPLIES},
        {"FiveBytes", FaultKind::resized, 5, REPLIES},
        {"SixBytes", FaultKind::resized, 6, REPLIES},
        {"SevenBytes", FaultKind::resized, 7, REPLIES},
        {"NotBlank", FaultKind::status, 0x1B, REPLIES},
        {"Accepted", FaultKind::status, 0x06, REPLIES},
        {"Refused", FaultKind::status, 0x05, REPLIES},
        {"NoiseBefore", FaultKind::noiseBefore, Fault::kDefault, REPLIES},
        {"NoiseAfter", FaultKind::noiseAfter, Fault::kDefault, REPLIES},
        {"UnpluggedInReply", FaultKind::unplugReply, Fault::kDefault, REPLIES},
        {"UnpluggedInFrame", FaultKind::unplugFrame, Fault::kDefault, HOST_FRAMES},
        {"Stuck", FaultKind::stuck, Fault::kDefault, HOST_FRAMES},
        {"StuckShort", FaultKind::stuck, 2, HOST_FRAMES},
        {"SlowEntry", FaultKind::slowEntry, Fault::kDefault, 2},
        {"LinesUnreadable", FaultKind::failGet, Fault::kDefault, 3},
        {"LinesFixed", FaultKind::failSet, Fault::kDefault, 4},
        {"NoBreak", FaultKind::failBreak, Fault::kDefault, 3},
    };
}

} // namespace flashwriter
