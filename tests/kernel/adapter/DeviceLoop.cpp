#include "tests/kernel/adapter/DeviceLoop.h"

#include <utility>

namespace flashwriter::kernel {

DeviceLoop::DeviceLoop(board::Descriptor socket, AdapterKind kind,
                       const board::BoardOptions& options)
    : BoardLoop(options.realTime), m_device(kind, options, board::clockNow()),
      m_link(std::move(socket), m_device) {}

void DeviceLoop::step() {
    m_link.receive();
    m_device.advance(board::clockNow());
    m_link.answer();
    if (m_device.board().unplugged()) {
        m_link.disconnect();
    }
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
