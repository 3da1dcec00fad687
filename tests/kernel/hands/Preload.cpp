// Hands for a program of this toolkit, where no screen is: load this into it with LD_PRELOAD, name
// a socket in WINDOW_HANDS, and the program's window can be worked by whoever connects there.
#include "tests/kernel/hands/CommandServer.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

// The programs that this one starts have no windows; loading the toolkit into each of them would
// take most of their time. In place, since other threads may be reading the environment.
void stayInThisProgram() {
    char* libraries = std::getenv("LD_PRELOAD"); // NOLINT(concurrency-mt-unsafe)
    if (libraries != nullptr) {
        *libraries = '\0';
    }
}

void growHands() {
    const char* path = std::getenv("WINDOW_HANDS"); // NOLINT(concurrency-mt-unsafe)
    if (path == nullptr) {
        return;
    }
    stayInThisProgram();
    try {
        new flashwriter::kernel::CommandServer(path); // for as long as the process lives
    } catch (const std::exception& error) {
        std::fprintf(stderr, "window hands: %s\n", error.what());
        std::_Exit(EXIT_FAILURE);
    }
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(growHands)
