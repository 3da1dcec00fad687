#include "tests/kernel/runs/Machine.h"

namespace flashwriter::kernel {

namespace {

Machine* theMachine = nullptr;

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

void Machine::TearDown() {
    m_adapter.reset();
    m_guest.reset();
}

Machine& Machine::the() {
    return *theMachine;
}

} // namespace flashwriter::kernel
