// The emulated machine itself.
#include "tests/kernel/runs/KernelFixture.h"

#include <chrono>
#include <csignal>

namespace flashwriter::kernel {
namespace {

class TheMachine : public KernelFixture {};

TEST_F(TheMachine, RunsThisMachinesPrograms) {
    const auto process = guest().start({.arguments = {FLASHWRITE, "--help"}, .environment = {}});
    EXPECT_EQ(process->wait(), 0);
    EXPECT_NE(process->output().find("Usage: flashwrite"), std::string::npos);
}

TEST_F(TheMachine, KeepsStreamsStatusAndEnvironmentApart) {
    const auto process =
        guest().start({.arguments = {"/bin/sh", "-c", "echo $A; echo $B >&2; exit 7"},
                       .environment = {"A=one", "B=two"}});
    EXPECT_EQ(process->wait(), 7);
    EXPECT_EQ(process->output(), "one\n");
    EXPECT_EQ(process->error(), "two\n");
}

TEST_F(TheMachine, RunsSeveralAtOnceAndSignalsThem) {
    const auto cat =
        guest().start({.arguments = {"/bin/cat"}, .environment = {}, .hasInput = true});
    const auto sleep = guest().start({.arguments = {"/bin/sleep", "1000"}, .environment = {}});
    cat->input("said\n");
    EXPECT_TRUE(cat->waitFor([](const ProcessState& state) { return state.output == "said\n"; }));
    sleep->signal(SIGTERM);
    EXPECT_EQ(sleep->wait(), 128 + SIGTERM);
    cat->input("");
    EXPECT_EQ(cat->wait(), 0);
}

TEST_F(TheMachine, LivesByTheClockOnTheWall) {
    const auto seconds = [] { return std::stod(guest().shell("date +%s.%N")); };
    const auto begin = std::chrono::steady_clock::now();
    const double before = seconds();
    guest().shell("sleep 1");
    const double there = seconds() - before;
    const std::chrono::duration<double> here = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(there, 1);
    EXPECT_LE(there, here.count());
}

} // namespace
} // namespace flashwriter::kernel
