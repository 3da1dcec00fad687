#pragma once

#include "board/Transcript.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter::bench {

// What one write by the program cost.
struct MeasuredWrite {
    bool verified = false;   // the program says so, and the board's flash holds the image
    double seconds = 0.0;    // from starting the program to its end
    double cpuSeconds = 0.0; // user and system
    long peakKib = 0;        // largest resident set
    board::Transcript transcript;
};

struct WriteSetup {
    std::string program; // path of flashwrite
    std::string preload; // path of the library that carries DTR and BREAK to the board
    std::string speed;   // as an operand of the program
    std::size_t kib = 128;
};

// Starts a paced board whose flash takes no time of its own, lets the program write an image of
// the size into it, and measures the program. Throws when that cannot even be tried.
MeasuredWrite measureWrite(const WriteSetup& setup);

} // namespace flashwriter::bench
