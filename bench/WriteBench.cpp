// What a whole write costs beside what the wire alone takes for the same frames.
#include "bench/MeasuredWrite.h"
#include "bench/WriteFigures.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <map>

namespace {

using flashwriter::bench::MeasuredWrite;
using flashwriter::bench::WriteSetup;

// What a release has to reach; a ratio of whole time to wire time for each speed.
const std::map<std::string, double> LARGEST_RATIO{{"115200", 1.10}, {"500000", 1.35}};
constexpr std::int64_t LARGEST_OVERHEAD_US = 200;
constexpr long LARGEST_PEAK_KIB = 12L * 1024;

struct Figures {
    double wire = 0.0;
    double ratio = 0.0;
    std::int64_t overhead = 0; // microseconds above the pause, median
};

Figures printRow(const WriteSetup& setup, const MeasuredWrite& write) {
    namespace bench = flashwriter::bench;
    const std::vector<std::int64_t> turns = flashwriter::board::hostOverheads(write.transcript);
    const std::vector<std::int64_t> above = bench::overheadsAbovePause(write.transcript);
    Figures figures;
    figures.wire = bench::wireSeconds(write.transcript);
    figures.ratio = write.seconds / figures.wire;
    figures.overhead = bench::percentile(above, 50);
    const auto inMilliseconds = [](std::int64_t us) { return static_cast<double>(us) / 1000.0; };
    std::printf(
        "%7s %8.3f %8.3f %6.3f  %6.2f %6.2f  %7.3f %7.3f  %6.2f %6.1f  %s\n", setup.speed.c_str(),
        write.seconds, figures.wire, figures.ratio, inMilliseconds(bench::percentile(turns, 50)),
        inMilliseconds(bench::percentile(turns, 99)), inMilliseconds(figures.overhead),
        inMilliseconds(bench::percentile(above, 99)), write.cpuSeconds,
        static_cast<double>(write.peakKib) / 1024.0, write.verified ? "verified" : "FAILED");
    std::fflush(stdout);
    return figures;
}

bool reachesGoals(const WriteSetup& setup, const MeasuredWrite& write, const Figures& figures) {
    const auto limit = LARGEST_RATIO.find(setup.speed);
    return (limit == LARGEST_RATIO.end() || figures.ratio <= limit->second) &&
           figures.overhead <= LARGEST_OVERHEAD_US && write.peakKib <= LARGEST_PEAK_KIB;
}

void printHead(std::size_t kib) {
    std::printf(
        "Writing %zu KiB. whole, wire: seconds of the write and of its frames on the wire.\n"
        "turn: ms from a reply's last bit to the next data frame, median and p99;\n"
        "above: the same beyond the pause that ends two ticks of the millisecond clock\n"
        "later. cpu: seconds of processor time. MiB: peak memory.\n\n"
        "  speed    whole     wire  ratio    turn    p99    above     p99     cpu    MiB\n",
        kib);
}

int run(int argc, char** argv) {
    CLI::App app{"Measures whole writes by flashwrite into a paced virtual board."};
    WriteSetup setup;
    setup.program = FLASHWRITE_PATH;
    setup.preload = LINES_PRELOAD_PATH;
    int runs = 1;
    bool goals = false;
    std::vector<std::string> speeds{"115200", "500000"};
    app.add_option("--program", setup.program, "flashwrite to measure")->capture_default_str();
    app.add_option("--kib", setup.kib, "size of the image")->check(CLI::Range(1, 256));
    app.add_option("--runs", runs, "writes at each speed")->check(CLI::Range(1, 100));
    app.add_option("--speeds", speeds, "speeds to write at");
    app.add_flag("--require-goals", goals, "fail when a write misses what a release has to reach");
    CLI11_PARSE(app, argc, argv);

    printHead(setup.kib);
    bool good = true;
    for (int i = 0; i < runs; ++i) {
        for (const std::string& speed : speeds) {
            setup.speed = speed;
            const MeasuredWrite write = measureWrite(setup);
            const Figures figures = printRow(setup, write);
            good = good && write.verified && (!goals || reachesGoals(setup, write, figures));
        }
    }
    return good ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "write_bench: %s\n", error.what());
        return 1;
    }
}
