// Lets the system's memory run out. Load it with LD_PRELOAD: from main() on, the
// FAILING_ALLOCATION-th call of malloc, calloc and realloc, counted from 1 on all threads, gives
// nothing; with MEMORY_STAYS_SCARCE set, none does from then on. The status that main() returns has
// 75 added when there were fewer calls.
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <dlfcn.h>
#include <grp.h>
#include <pwd.h>

namespace {

using Main = int (*)(int, char**, char**);

constexpr int NOT_REACHED = 75;

std::atomic<long> calls{0};
std::atomic<long> failing{0}; // 0: none
bool isLasting = false;
Main programsMain = nullptr;

bool isThereMemory() {
    const long which = failing;
    if (which == 0) {
        return true;
    }
    const long number = ++calls;
    if (number != which && !(isLasting && number > which)) {
        return true;
    }
    errno = ENOMEM;
    return false;
}

int countedMain(int count, char** arguments, char** environment) {
    const char* number = std::getenv("FAILING_ALLOCATION");
    isLasting = std::getenv("MEMORY_STAYS_SCARCE") != nullptr;
    const long which = number != nullptr ? std::strtol(number, nullptr, 10) : 0;
    // The C library itself ends the process when it lacks memory for its first look at the users.
    static_cast<void>(::getpwuid(0));
    static_cast<void>(::getgrgid(0));
    failing = which;
    const int status = programsMain(count, arguments, environment);
    failing = 0;
    return calls < which ? NOT_REACHED + status : status;
}

} // namespace

#define EXPORTED extern "C" __attribute__((visibility("default")))

// The C library's own, which need no look-up that would take memory.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
}

EXPORTED void* malloc(std::size_t size) noexcept {
    return isThereMemory() ? __libc_malloc(size) : nullptr;
}

EXPORTED void* calloc(std::size_t count, std::size_t size) noexcept {
    return isThereMemory() ? __libc_calloc(count, size) : nullptr;
}

EXPORTED void* realloc(void* memory, std::size_t size) noexcept {
    return isThereMemory() ? __libc_realloc(memory, size) : nullptr;
}

// What calls main(): memory is not counted that the libraries take before.
EXPORTED int __libc_start_main(Main main, int count, char** arguments, void (*begin)(),
                               void (*end)(), void (*endOfLoader)(), void* stackEnd) {
    using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
    programsMain = main;
    const auto next = reinterpret_cast<Start>(::dlsym(RTLD_NEXT, "__libc_start_main"));
    return next(countedMain, count, arguments, begin, end, endOfLoader, stackEnd);
}
