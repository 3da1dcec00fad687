#include "tests/random/RandomWrite.h"

#include "sequence/context/DiagnosticLog.h"
#include "tests/random/Verdict.h"
#include "tests/support/Eventually.h"
#include "tests/support/ImageFile.h"

#include <filesystem>
#include <iterator>

namespace flashwriter::random {

namespace {

std::ptrdiff_t entriesIn(const char* directory) {
    const std::filesystem::directory_iterator entries(directory);
    return std::distance(begin(entries), end(entries));
}

std::string report(const Scenario& scenario, const simulation::SimulatedWrite& write,
                   const std::vector<std::string>& complaints) {
    if (complaints.empty()) {
        return "";
    }
    std::string text = "FAILED: seed " + std::to_string(scenario.seed) + ": --seed " +
                       std::to_string(scenario.seed) + " --runs 1\n  " + scenario.description() +
                       "\n  returned " + std::to_string(write.record.returned) + " after " +
                       std::to_string(write.duration.count() / 1'000'000) + " ms\n";
    for (const std::string& complaint : complaints) {
        text += "  * " + complaint + "\n";
    }
    for (const std::string& line : write.record.log) {
        text += "  log: " + line + (line.ends_with("\n") ? "" : "\n");
    }
    text += "  progress:";
    for (const auto& [stage, percent] : write.record.window->progress) {
        text += " " + std::to_string(stage) + ":" + std::to_string(percent);
    }
    return text + "\n" + write.transcript;
}

} // namespace

RandomWriteOutcome runRandomWrite(std::uint32_t seed) {
    setDiagnosticSink([](const char*) {});
    const Scenario scenario = drawScenario(seed);
    const testing::ImageFile file(scenario.file.name, scenario.file.contents);
    const std::ptrdiff_t descriptors = entriesIn("/proc/self/fd");
    const std::ptrdiff_t threads = entriesIn("/proc/self/task");
    const std::vector<simulation::SimulatedWrite> writes = simulation::simulateWrites(
        scenario.writes, scenario.board, scenario.clock, file.path(), scenario.baudRate);
    std::string text;
    for (const simulation::SimulatedWrite& write : writes) {
        text += report(scenario, write, complaints(scenario, write));
    }
    if (entriesIn("/proc/self/fd") != descriptors) {
        text += "FAILED: seed " + std::to_string(seed) + ": a descriptor was left open\n";
    }
    if (!testing::eventually([&] { return entriesIn("/proc/self/task") == threads; })) {
        text += "FAILED: seed " + std::to_string(seed) + ": a thread was left behind\n";
    }
    return {writes.back().record.returned, text};
}

} // namespace flashwriter::random
