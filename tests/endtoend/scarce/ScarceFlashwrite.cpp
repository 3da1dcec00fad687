// flashwrite in a process that runs out of something:
//   scarce_flashwrite PORT SPEED FILE
// FAILING_ALLOCATION=n: the n-th allocation fails, counted from 1 on all threads; status 75 instead
// of 0 when there are fewer. DESCRIPTORS=n: no more than n descriptors besides the three standard
// ones. THREADS=n: the n-th thread cannot be had; status 75 likewise.
#include "console/ConsoleWrite.h"
#include "tests/support/FailingThread.h"
#include "tests/support/ScarceMemory.h"

#include <sys/resource.h>

#include <atomic>
#include <cstdlib>

namespace {

constexpr int NOT_REACHED = 75;

std::atomic<long> allocations{0};
long failing = 0;

bool isThereMemory(std::size_t /*size*/) {
    return ++allocations != failing;
}

long numberIn(const char* name) {
    const char* text = std::getenv(name); // NOLINT(concurrency-mt-unsafe): before any thread
    return text != nullptr ? std::strtol(text, nullptr, 10) : -1;
}

} // namespace

int main(int argc, char** argv) {
    failing = numberIn("FAILING_ALLOCATION");
    if (const long descriptors = numberIn("DESCRIPTORS"); descriptors >= 0) {
        const auto limit = static_cast<rlim_t>(3 + descriptors);
        const rlimit limits{limit, limit};
        ::setrlimit(RLIMIT_NOFILE, &limits);
    }
    flashwriter::testing::failingThread = numberIn("THREADS");
    flashwriter::testing::memoryRule = failing > 0 ? isThereMemory : nullptr;
    const int status = flashwriter::consoleWrite(argc, argv);
    flashwriter::testing::memoryRule = nullptr;
    const bool isReached = allocations >= failing && flashwriter::testing::failingThread <= 0;
    return isReached ? status : NOT_REACHED + status;
}
