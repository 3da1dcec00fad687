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
}

void Machine::TearDown() {
    m_adapter.reset();
    m_guest.reset();
}

Machine& Machine::the() {
    return *theMachine;
}

} // namespace flashwriter::kernel
