// How fast S-record files are read: both passes of the program's reader, the plainest loop there
// is, and objcopy, on the same file in one run.
#include "bench/CommandLine.h"
#include "bench/GoalReporter.h"
#include "bench/MotSample.h"
#include "bench/Objcopy.h"
#include "bench/PlainMotLoop.h"
#include "sequence/context/DiagnosticLog.h"
#include "targetfile/NSTargetFileForMot.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <exception>
#include <functional>
#include <vector>

namespace {

using flashwriter::MotSample;

constexpr const char* readerName = "NSTargetFileForMot::ReadFile";
constexpr std::uint64_t imageSize = 0x1000000;

void countText(benchmark::State& state, const MotSample& sample) {
    state.counters[flashwriter::speedCounter] =
        benchmark::Counter(static_cast<double>(sample.textSize()) / 1e6,
                           benchmark::Counter::kIsIterationInvariantRate);
}

void readFile(benchmark::State& state, const MotSample& sample) {
    while (state.KeepRunning()) {
        flashwriter::NSTargetFileForMot file;
        if (file.ReadFile(sample.path()) != flashwriter::RESULT_OK ||
            file.GetDataSize() != imageSize) {
            state.SkipWithError("the sample was not read");
            return;
        }
        benchmark::DoNotOptimize(file.GetDataFlash());
    }
    countText(state, sample);
}

void plainLoop(benchmark::State& state, const MotSample& sample) {
    while (state.KeepRunning()) {
        std::vector<std::uint8_t> image(imageSize, 0xFF);
        if (flashwriter::plainMotLoop(sample.path(), image) != imageSize - 32) {
            state.SkipWithError("the sample was not read");
            return;
        }
        benchmark::DoNotOptimize(image.data());
    }
    countText(state, sample);
}

void objcopy(benchmark::State& state, const MotSample& sample) {
    while (state.KeepRunning()) {
        if (!flashwriter::runObjcopy(sample.path(), sample.pathBeside("sample.raw"))) {
            state.SkipWithError("objcopy is missing or failed");
            return;
        }
    }
    countText(state, sample);
}

// Wall-clock time, since objcopy's is spent in another process; the median of several rounds, since
// other programs take their share of the machine while it is measured.
void add(const char* name, void (*measure)(benchmark::State&, const MotSample&),
         const MotSample& sample) {
    benchmark::RegisterBenchmark(name, measure, std::cref(sample))
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(7)
        ->ReportAggregatesOnly();
}

int run(std::vector<char*> arguments) {
    double required = 0;
    if (!flashwriter::takeRequiredSpeed(arguments, required)) {
        std::fprintf(stderr, "--require-mbps wants a number above 0\n");
        return 2;
    }
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 2;
    }
    flashwriter::setDiagnosticSink([](const char*) {});
    const MotSample sample;
    add(readerName, readFile, sample);
    add("plain loop in one pass", plainLoop, sample);
    add("objcopy", objcopy, sample);
    flashwriter::GoalReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return reporter.printVerdict(readerName, required) ? 0 : 1;
}

} // namespace

int main(int argumentCount, char** arguments) {
    try {
        return run({arguments, arguments + argumentCount});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 2;
    }
}
