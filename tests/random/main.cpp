// random_writes: whole writes of random images to random boards that do random things wrong, in
// virtual time. A seed is one run, the same every time and on every machine.

#include "tests/random/Jobs.h"

#include <cstdint>
#include <cstdio>
#include <exception>
#include <optional>
#include <random>
#include <thread>

#include <CLI/CLI.hpp>

namespace {

using flashwriter::random::Tally;

constexpr int EXIT_RUNS_FAILED = 1;
constexpr int EXIT_USAGE = 2;

struct Options {
    std::uint32_t runs = 200;
    std::optional<std::uint32_t> seed;
    std::uint32_t jobs = std::max(1U, std::thread::hardware_concurrency());
};

// -1: go on; anything else: exit with it.
int parse(int argc, char** argv, Options& options) {
    CLI::App app{"Random whole writes in virtual time, each judged by what it may come to."};
    app.add_option("--runs", options.runs, "How many writes, one for each seed")
        ->check(CLI::Range(1, 100'000'000))
        ->capture_default_str();
    app.add_option("--seed", options.seed, "Of the first write; without it a new one");
    app.add_option("--jobs", options.jobs, "How many processes side by side")
        ->check(CLI::Range(1, 256))
        ->capture_default_str();
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : EXIT_USAGE;
    }
    return -1;
}

int run(const Options& options) {
    // A round number, so that the seeds of a few runs are easily told from those of others.
    const std::uint32_t seed = options.seed.value_or(std::random_device()() / 100'000 * 100'000);
    std::printf("seeds %u to %u\n", seed, seed + options.runs - 1);
    static_cast<void>(std::fflush(stdout));
    const Tally tally = flashwriter::random::runJobs(seed, options.runs, options.jobs);
    std::printf("%u runs, %u failed; results %s\n", tally.runs, tally.failures,
                tally.outcomesText().c_str());
    return tally.failures == 0 && tally.runs == options.runs ? 0 : EXIT_RUNS_FAILED;
}

} // namespace

int main(int argc, char** argv) {
    try {
        Options options;
        const int status = parse(argc, argv, options);
        return status >= 0 ? status : run(options);
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "random_writes: %s\n", error.what()));
        return EXIT_RUNS_FAILED;
    }
}
