#include "tests/kernel/adapter/DeviceLoop.h"

#include <utility>

namespace flashwriter::kernel {

DeviceLoop::DeviceLoop(board::Descriptor socket, AdapterKind kind,
                       const board::BoardOptions& options, std::string looseAt)
    : BoardLoop(options.realTime), m_device(kind, options, board::clockNow()),
      m_link(std::move(socket), m_device), m_looseAt(std::move(looseAt)) {}

void DeviceLoop::step() {
    m_link.receive();
    m_device.advance(board::clockNow());
    m_link.answer();
    if (m_device.board().unplugged() || isLoose()) {
        m_link.disconnect();
    }
}

bool DeviceLoop::isLoose() {
    const board::Transcript& transcript = m_device.board().transcript();
    bool isSaid = false;
    for (; m_read < transcript.size(); ++m_read) {
        isSaid = isSaid || transcript[m_read].meaning.find(m_looseAt) != std::string::npos;
    }
    return isSaid && !m_looseAt.empty();
}

void DeviceLoop::addTo(std::vector<pollfd>& entries) const {
    if (m_link.connected()) {
        const auto events = static_cast<short>(m_link.wantsToWrite() ? POLLIN | POLLOUT : POLLIN);
        entries.push_back({.fd = m_link.fd(), .events = events, .revents = 0});
    }
}

std::optional<board::BoardTime> DeviceLoop::nextDeadline() const {
    return m_device.nextDeadline();
}

} // namespace flashwriter::kernel
