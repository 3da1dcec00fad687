// The parts of what the desktop program is measured at. Each measures, prints its figures beside
// those of the empty window, and tells whether what a release has to reach was reached. They throw
// std::runtime_error when there is nothing to measure, as after a write that failed.
#pragma once

#include "bench/window/ShownProgram.h"

#include <chrono>
#include <string>

namespace flashwriter::bench {

struct MeasuredWindows {
    WindowToSee program;
    WindowToSee empty;
};

struct MeasuredPrograms {
    std::string flashWriter; // paths
    std::string emptyWindow;
    std::string virtualBoard;
    std::string linesLibrary; // what carries DTR and BREAK to the board
    std::string image;
};

bool reportStarts(const Screen& screen, const MeasuredWindows& windows, int starts);
bool reportIdling(const Screen& screen, const MeasuredWindows& windows, std::chrono::seconds time);
bool reportKeys(const MeasuredPrograms& programs, std::chrono::seconds withoutWrite);
void reportMemory(const Screen& screen, const MeasuredWindows& windows,
                  const MeasuredPrograms& programs);

} // namespace flashwriter::bench
