#include "console/Interrupt.h"

#include "sequence/context/DiagnosticStream.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstring>

namespace flashwriter {

namespace {

constexpr std::int32_t ERASING = 102;

constexpr const char* UNTOUCHED = "Interrupted before anything was written: the board's contents "
                                  "are as they were.\n";
// An erase or a verification may be under way, or not have begun: this covers all of it.
constexpr const char* INCOMPLETE = "Interrupted in the middle of the write: the board's contents "
                                   "are incomplete or unverified. A new write mends it.\n";
constexpr const char* COMPLETE = "Interrupted after the end of the write: the image is written and "
                                 "verified.\n";

// Signal handlers read these.
std::atomic<const char*> message{UNTOUCHED};
std::atomic<bool> beginsFreshLine{false};
std::atomic<bool> isEnding{false};
static_assert(std::atomic<const char*>::is_always_lock_free);
static_assert(std::atomic<bool>::is_always_lock_free);

// Only what a signal handler may call. A reader that has stopped must not keep the program.
void say(const char* text) {
    if (takesAtOnce(STDERR_FILENO)) {
        static_cast<void>(::write(STDERR_FILENO, text, std::strlen(text)) >= 0);
    }
}

// Dies of the signal, as a shell expects of a program that somebody interrupts. A plain exit would
// close the port, and Linux holds that for half a minute while an adapter takes no more bytes: only
// a signal that is still there for the thread that closes it ends that wait. It is the last one to
// go, so the signal is sent to the process; and raised, as this thread must go no further.
void endBySignal(int number) {
    std::signal(number, SIG_DFL);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, number);
    ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    ::kill(::getpid(), number);
    ::raise(number);
}

void endAtOnce(int number) {
    isEnding = true;
    const char* text = message; // no erase begins any more if it says that none has
    if (beginsFreshLine) {
        say("\n");
    }
    say(text);
    endBySignal(number);
}

} // namespace

void installInterruptHandlers(bool isTerminal) {
    beginsFreshLine = isTerminal;
    constexpr std::array<int, 3> NUMBERS{SIGINT, SIGTERM, SIGHUP};
    for (const int number : NUMBERS) {
        struct sigaction before {};
        struct sigaction action {};
        action.sa_handler = endAtOnce;
        sigemptyset(&action.sa_mask); // a macro on some systems
        if (::sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
            ::sigaction(number, &action, nullptr);
        }
    }
}

// Blocks may be erased from the first report of that stage on. Either a handler that ends the
// program reads the new message, or this thread sees it ending and goes no further.
void noteStage(std::int32_t step) {
    message = step >= ERASING ? INCOMPLETE : UNTOUCHED;
    while (isEnding) {
        ::pause();
    }
}

void noteOutcome(ResultCode result) {
    if (result == RESULT_OK) {
        message = COMPLETE;
    }
}

const char* interruptMessage() {
    return message;
}

} // namespace flashwriter
