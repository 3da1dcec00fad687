#include "console/Interrupt.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>

namespace flashwriter {
namespace {

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

} // namespace
} // namespace flashwriter
