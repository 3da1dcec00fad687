#include "tests/random/Jobs.h"

#include "tests/random/RandomWrite.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace flashwriter::random {

namespace {

// One tally for each job, in memory that this process and its children share.
class SharedTallies {
public:
    explicit SharedTallies(std::uint32_t jobs) : m_size(jobs * sizeof(Tally)) {
        void* const memory =
            ::mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) {
            throw std::system_error(errno, std::generic_category(), "no memory to share");
        }
        m_tallies = static_cast<Tally*>(memory);
        for (std::uint32_t job = 0; job < jobs; ++job) {
            new (m_tallies + job) Tally;
        }
    }
    ~SharedTallies() { ::munmap(m_tallies, m_size); }
    SharedTallies(const SharedTallies&) = delete;
    SharedTallies& operator=(const SharedTallies&) = delete;

    Tally& of(std::uint32_t job) { return m_tallies[job]; }

private:
    std::size_t m_size;
    Tally* m_tallies = nullptr;
};

void print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
    static_cast<void>(std::fflush(stdout));
}

void runOne(std::uint32_t seed, Tally& tally) {
    tally.seed = seed;
    const RandomWriteOutcome outcome = runRandomWrite(seed);
    ++tally.outcomes.at(Tally::indexOf(outcome.result));
    ++tally.runs;
    if (!outcome.report.empty()) {
        ++tally.failures;
        print(outcome.report);
    }
}

// In a child: every so many-th seed.
[[noreturn]] void runJob(std::uint32_t job, std::uint32_t jobs, std::uint32_t firstSeed,
                         std::uint32_t runs, Tally& tally) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::thread([] {}).join(); // a sanitizer starts a thread of its own with the first one
    int status = 0;
    try {
        for (std::uint32_t run = job; run < runs; run += jobs) {
            runOne(firstSeed + run, tally);
        }
    } catch (const std::exception& error) {
        print(std::string("FAILED: ") + error.what() + "\n");
        status = 1;
    }
    std::exit(status); // the leak checker looks at the end of a process
}

void awaitJob(pid_t child, Tally& tally) {
    int status = 0;
    while (::waitpid(child, &status, 0) == -1 && errno == EINTR) {
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        ++tally.failures;
        print("FAILED: the process of seed " + std::to_string(tally.seed) + " died: --seed " +
              std::to_string(tally.seed) + " --runs 1\n");
    }
}

} // namespace

void Tally::add(const Tally& other) {
    runs += other.runs;
    failures += other.failures;
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        outcomes[i] += other.outcomes[i];
    }
}

std::string Tally::outcomesText() const {
    std::string text;
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        if (outcomes[i] != 0) {
            std::array<char, 32> line{};
            std::snprintf(line.data(), line.size(), "%s0x%04X: %u", text.empty() ? "" : ", ",
                          static_cast<unsigned>(codeOf(i)), outcomes[i]);
            text += line.data();
        }
    }
    return text;
}

Tally runJobs(std::uint32_t firstSeed, std::uint32_t runs, std::uint32_t jobs) {
    SharedTallies tallies(jobs);
    std::vector<pid_t> children;
    for (std::uint32_t job = 0; job < jobs; ++job) {
        const pid_t child = ::fork();
        if (child == 0) {
            runJob(job, jobs, firstSeed, runs, tallies.of(job));
        }
        if (child == -1) {
            throw std::system_error(errno, std::generic_category(), "no process to be had");
        }
        children.push_back(child);
    }
    Tally all;
    for (std::uint32_t job = 0; job < jobs; ++job) {
        awaitJob(children[job], tallies.of(job));
        all.add(tallies.of(job));
    }
    return all;
}

} // namespace flashwriter::random
