#include "tests/kernel/guest/GuestProcess.h"

#include <csignal>
#include <exception>

namespace flashwriter::kernel {

namespace {

constexpr std::chrono::seconds BURIAL{10}; // the kernel may hold one that has a port open

} // namespace

GuestProcess::GuestProcess(GuestLink& link, const Command& command)
    : m_link(link), m_process(link.newProcess()) {
    m_link.send({.kind = MessageKind::start, .process = m_process, .body = encode(command)});
}

GuestProcess::~GuestProcess() {
    try {
        signal(SIGKILL);
        wait(BURIAL);                 // what it had open is closed then
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // The machine has gone, and the process with it.
    }
}

pid_t GuestProcess::pid() {
    waitFor([](const ProcessState& state) { return state.pid != 0; });
    return m_link.state(m_process).pid;
}

bool GuestProcess::waitFor(const std::function<bool(const ProcessState&)>& condition,
                           Milliseconds limit) {
    return m_link.waitFor(m_process, condition, limit);
}

std::optional<int> GuestProcess::wait(Milliseconds limit) {
    waitFor([](const ProcessState& state) { return state.status.has_value(); }, limit);
    return m_link.state(m_process).status;
}

void GuestProcess::signal(int number) {
    m_link.send(
        {.kind = MessageKind::signal, .process = m_process, .body = std::to_string(number)});
}

void GuestProcess::input(const std::string& bytes) {
    m_link.send({.kind = MessageKind::input, .process = m_process, .body = bytes});
}

} // namespace flashwriter::kernel
