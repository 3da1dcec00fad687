#include "tests/kernel/runs/Machine.h"

#include <iostream>

namespace flashwriter::kernel {

namespace {

Machine* theMachine = nullptr;

// One run makes some 40 writes, and on a machine at rest none of them twice.
constexpr int REPEATS = 3;

} // namespace

Machine::Machine(AdapterKind kind) : m_kind(kind) {
    theMachine = this;
}

void Machine::SetUp() {
    m_guest.emplace();
    m_adapter.emplace(m_guest->adapterSocket());
    // What runs for the first time is read and translated on the way, which takes longer than a
    // board waits: one write for nothing, to a port that is none.
    m_guest->shell(std::string(FLASHWRITE) + " /dev/null 115200 /dev/null >/dev/null 2>&1 || true");
}

void Machine::noteRepeat() {
    ++m_repeats;
    std::cout << "The machine was held up: once more.\n";
}

void Machine::TearDown() {
    std::cout << "Writes made anew because the machine was held up: " << m_repeats << "\n";
    EXPECT_LE(m_repeats, REPEATS) << "this machine is too busy to judge by";
    m_adapter.reset();
    m_guest.reset();
}

Machine& Machine::the() {
    return *theMachine;
}

} // namespace flashwriter::kernel
