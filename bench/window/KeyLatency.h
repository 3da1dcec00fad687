#pragma once

#include "bench/window/KeyWatch.h"

#include <chrono>
#include <string>

namespace flashwriter::bench {

struct MeasuredKeys {
    bool succeeded = false; // the write's own result
    KeyFigures duringWrite;
    KeyFigures withoutWrite;
};

// The goal: no key takes longer to have its effect.
inline constexpr std::chrono::milliseconds LONGEST_EFFECT{100};

// Builds the program's main window in this process, writes the image into the board at the port at
// 115200 bits per second, and presses keys all the while; then as long as asked for with the same
// sheet up and no write. Once per process, which must have a desktop; main thread. Throws
// std::runtime_error when there is nothing to press keys on.
MeasuredKeys measureKeys(const std::string& port, const std::string& image,
                         std::chrono::seconds quiet);

} // namespace flashwriter::bench
