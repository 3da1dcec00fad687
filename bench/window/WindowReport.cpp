#include "bench/window/WindowReport.h"

#include "bench/window/BoardProcess.h"
#include "bench/window/Figures.h"
#include "bench/window/KeyLatency.h"
#include "bench/window/ProcessCosts.h"
#include "tests/support/desktop/DesktopProgram.h"

#include <cstdio>
#include <stdexcept>
#include <thread>

namespace flashwriter::bench {

namespace {

// What a release has to reach, beside LONGEST_EFFECT.
constexpr double LARGEST_START_RATIO = 1.5;
constexpr std::int64_t LARGEST_IDLE_DIFFERENCE = 1; // ticks of processor time

constexpr std::chrono::seconds SETTLING{2};

bool judge(const std::string& goal, bool isReached) {
    std::printf("  goal: %s: %s\n\n", goal.c_str(), isReached ? "reached" : "NOT reached");
    static_cast<void>(std::fflush(stdout));
    return isReached;
}

void printSpread(const char* name, const Spread& spread) {
    std::printf("  %-34s %8.1f %8.1f %8.1f\n", name, spread.median, spread.p99, spread.largest);
}

std::int64_t idleTicks(const Screen& screen, const WindowToSee& window, std::chrono::seconds time) {
    const ShownProgram program(screen, window);
    std::this_thread::sleep_for(SETTLING);
    const std::int64_t before = processorTicks(program.pid());
    std::this_thread::sleep_for(time);
    return processorTicks(program.pid()) - before;
}

double idleMib(const Screen& screen, const WindowToSee& window) {
    const ShownProgram program(screen, window);
    std::this_thread::sleep_for(SETTLING);
    return peakMib(program.pid());
}

double mibAfterWrite(const MeasuredPrograms& programs) {
    BoardProcess board(programs.virtualBoard);
    testing::DesktopProgram program(programs.flashWriter, programs.linesLibrary);
    const std::string result = program.write(board.port(), programs.image);
    if (result.find("succeeded") == std::string::npos || !board.finish()) {
        throw std::runtime_error("the write failed: " + result);
    }
    return peakMib(program.process().pid());
}

bool areGood(const char* when, const KeyFigures& keys) {
    std::printf("  %s: %zu keys, %zu of them lost\n", when, keys.sent, keys.lost);
    printSpread("until at the window", spreadOf(keys.arrivals));
    printSpread("until the effect is on the screen", spreadOf(keys.effects));
    return !keys.effects.empty() && keys.lost == 0 &&
           spreadOf(keys.effects).largest < static_cast<double>(LONGEST_EFFECT.count());
}

} // namespace

// By turns, so that whatever else the machine does meets both.
bool reportStarts(const Screen& screen, const MeasuredWindows& windows, int starts) {
    Durations ofProgram;
    Durations ofEmpty;
    for (int i = 0; i < starts; ++i) {
        ofProgram.push_back(ShownProgram(screen, windows.program).startTime());
        ofEmpty.push_back(ShownProgram(screen, windows.empty).startTime());
    }
    const double ratio = spreadOf(ofProgram).median / spreadOf(ofEmpty).median;
    std::printf("Start, from the process to its painted window, %d times each\n"
                "  ms                                   median      p99      max\n",
                starts);
    printSpread("flash-writer", spreadOf(ofProgram));
    printSpread("empty window", spreadOf(ofEmpty));
    std::printf("  ratio of the medians: %.2f\n", ratio);
    return judge("at most 1.5 times the empty window", ratio <= LARGEST_START_RATIO);
}

bool reportIdling(const Screen& screen, const MeasuredWindows& windows, std::chrono::seconds time) {
    const std::int64_t program = idleTicks(screen, windows.program, time);
    const std::int64_t empty = idleTicks(screen, windows.empty, time);
    std::printf("Idle for %d s: ticks of processor time, of 10 ms\n"
                "  flash-writer %ld, empty window %ld\n",
                static_cast<int>(time.count()), static_cast<long>(program),
                static_cast<long>(empty));
    return judge("at most a tick more than the empty window",
                 program <= empty + LARGEST_IDLE_DIFFERENCE);
}

bool reportKeys(const MeasuredPrograms& programs, std::chrono::seconds withoutWrite) {
    BoardProcess board(programs.virtualBoard);
    const MeasuredKeys keys = measureKeys(board.port(), programs.image, withoutWrite);
    if (!keys.succeeded || !board.finish()) {
        throw std::runtime_error("the write failed during which keys were pressed");
    }
    std::printf("Keys pressed every 50 to 150 ms\n"
                "  ms                                   median      p99      max\n");
    const bool areDuringWrite = areGood("during a write", keys.duringWrite);
    const bool areWithoutWrite = areGood("without one", keys.withoutWrite);
    const double ratio =
        spreadOf(keys.duringWrite.effects).median / spreadOf(keys.withoutWrite.effects).median;
    std::printf("  ratio of the medians until the effect: %.2f\n", ratio);
    return judge("each key has its effect within 100 ms, and none is lost",
                 areDuringWrite && areWithoutWrite);
}

void reportMemory(const Screen& screen, const MeasuredWindows& windows,
                  const MeasuredPrograms& programs) {
    const double empty = idleMib(screen, windows.empty);
    const double idle = idleMib(screen, windows.program);
    std::printf("Peak memory, MiB\n"
                "  empty window %.1f; flash-writer idle %.1f, after a write %.1f\n\n",
                empty, idle, mibAfterWrite(programs));
    static_cast<void>(std::fflush(stdout));
}

} // namespace flashwriter::bench
