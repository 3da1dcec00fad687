#include "console/Interrupt.h"

#include <gmock/gmock.h>
#include <poll.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

namespace flashwriter {
namespace {

std::atomic<bool> holdsHandlers{false}; // before they say anything
std::atomic<bool> isHandlerHeld{false};

using ::testing::ExitedWithCode;
using ::testing::KilledBySignal;

// Each of these runs in a child process of its own.
[[noreturn]] void interrupt(int number, std::int32_t stage, bool isTerminal) {
    std::signal(number, SIG_DFL);
    installInterruptHandlers(isTerminal);
    noteStage(stage);
    std::raise(number);
    std::_Exit(99);
}

TEST(InterruptDeathTest, EndsAtOnceWithTheSignalsStatus) {
    EXPECT_EXIT(interrupt(SIGINT, 103, false), KilledBySignal(SIGINT), "^Interrupted");
    EXPECT_EXIT(interrupt(SIGTERM, 103, false), KilledBySignal(SIGTERM), "^Interrupted");
    EXPECT_EXIT(interrupt(SIGHUP, 103, false), KilledBySignal(SIGHUP), "^Interrupted");
}

TEST(InterruptDeathTest, SaysWhatTheBoardIsLeftWith) {
    const char* untouched = "the board's contents are as they were\\.\n$";
    const char* incomplete = "the board's contents are incomplete.*A new write mends it\\.\n$";
    EXPECT_EXIT(interrupt(SIGINT, 101, false), KilledBySignal(SIGINT), untouched);
    EXPECT_EXIT(interrupt(SIGINT, 100, false), KilledBySignal(SIGINT), untouched);
    EXPECT_EXIT(interrupt(SIGINT, 102, false), KilledBySignal(SIGINT), incomplete);
    EXPECT_EXIT(interrupt(SIGINT, 103, false), KilledBySignal(SIGINT), incomplete);
}

TEST(InterruptDeathTest, BeginsAFreshLineOfATerminal) {
    EXPECT_EXIT(interrupt(SIGINT, 103, true), KilledBySignal(SIGINT), "^\nInterrupted");
}

TEST(InterruptDeathTest, AnIgnoredSignalStaysIgnored) {
    const auto hangUp = [] {
        std::signal(SIGHUP, SIG_IGN);
        installInterruptHandlers(false);
        std::raise(SIGHUP);
        std::_Exit(7);
    };
    EXPECT_EXIT(hangUp(), ExitedWithCode(7), "^$");
}

// The handler has seen that nothing was erased, and is to say so: nothing may be erased any more.
[[noreturn]] void reachTheEraseMeanwhile() {
    std::signal(SIGINT, SIG_DFL);
    installInterruptHandlers(false);
    noteStage(101);
    holdsHandlers = true;
    std::thread([] { std::raise(SIGINT); }).detach();
    while (!isHandlerHeld) {
        std::this_thread::yield();
    }
    std::thread([] {
        noteStage(102);
        std::_Exit(98); // the write goes on
    }).detach();
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    holdsHandlers = false;
    std::this_thread::sleep_for(std::chrono::seconds(20));
    std::_Exit(99);
}

TEST(InterruptDeathTest, LetsNoEraseBeginWhileItEndsTheProgram) {
    EXPECT_EXIT(reachTheEraseMeanwhile(), KilledBySignal(SIGINT),
                "the board's contents are as they were\\.\n$");
}

} // namespace
} // namespace flashwriter

// The name by which the linker knows the last that a handler asks before it says something.
extern "C" {
bool __real__ZN11flashwriter11takesAtOnceEi(int descriptor);

bool __wrap__ZN11flashwriter11takesAtOnceEi(int descriptor) {
    while (flashwriter::holdsHandlers) {
        flashwriter::isHandlerHeld = true;
        ::poll(nullptr, 0, 1);
    }
    return __real__ZN11flashwriter11takesAtOnceEi(descriptor);
}
}
