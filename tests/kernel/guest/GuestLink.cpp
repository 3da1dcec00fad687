#include "tests/kernel/guest/GuestLink.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>

namespace flashwriter::kernel {

GuestLink::GuestLink(int descriptor) : m_descriptor(descriptor), m_reader([this] { read(); }) {}

GuestLink::~GuestLink() {
    ::shutdown(m_descriptor, SHUT_RDWR); // ends the reader
    m_reader.join();
    ::close(m_descriptor);
}

std::uint32_t GuestLink::newProcess() {
    const std::lock_guard lock(m_mutex);
    m_states[++m_processes] = {};
    return m_processes;
}

void GuestLink::send(const Message& message) {
    const std::lock_guard lock(m_sending);
    sendMessage(m_descriptor, message);
}

bool GuestLink::waitUntilReady(std::chrono::milliseconds limit) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, limit, [this] { return m_isReady || m_isGone; });
    return m_isReady;
}

ProcessState GuestLink::state(std::uint32_t process) const {
    const std::lock_guard lock(m_mutex);
    return m_states.at(process);
}

bool GuestLink::waitFor(std::uint32_t process,
                        const std::function<bool(const ProcessState&)>& condition,
                        std::chrono::milliseconds limit) {
    std::unique_lock lock(m_mutex);
    const ProcessState& state = m_states.at(process);
    m_changed.wait_for(lock, limit, [&] { return condition(state) || m_isGone; });
    return condition(state);
}

void GuestLink::read() {
    MessageReader reader;
    std::array<char, 16384> chunk{};
    ssize_t size = 0;
    while ((size = ::read(m_descriptor, chunk.data(), chunk.size())) > 0) {
        reader.add({chunk.data(), static_cast<std::size_t>(size)});
        while (const auto message = reader.take()) {
            take(*message);
        }
    }
    const std::lock_guard lock(m_mutex);
    m_isGone = true;
    m_changed.notify_all();
}

void GuestLink::take(const Message& message) {
    const std::lock_guard lock(m_mutex);
    ProcessState& state = m_states[message.process];
    switch (message.kind) {
    case MessageKind::ready:
        m_isReady = true;
        break;
    case MessageKind::started:
        state.pid = std::stoi(message.body);
        break;
    case MessageKind::output:
        state.output += message.body;
        break;
    case MessageKind::error:
        state.error += message.body;
        break;
    case MessageKind::ended:
        state.status = std::stoi(message.body);
        state.took =
            std::chrono::milliseconds(std::stoll(message.body.substr(message.body.find(' '))));
        break;
    default:
        break;
    }
    m_changed.notify_all();
}

} // namespace flashwriter::kernel
