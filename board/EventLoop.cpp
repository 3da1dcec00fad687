#include "board/EventLoop.h"

#include <algorithm>

namespace flashwriter::board {

namespace {

// How often to look when the system does not tell that the port was opened.
constexpr BoardTime kLook = std::chrono::milliseconds(5);

} // namespace

EventLoop::EventLoop(const BoardOptions& options)
    : BoardLoop(options.realTime), m_path(m_terminal.path()), m_watch(m_path), m_lines(m_path),
      m_adapter(options, *this, clockNow()) {
    const auto& faults = options.faults;
    if (std::any_of(faults.begin(), faults.end(),
                    [](const Fault& fault) { return fault.kind == FaultKind::stuck; })) {
        // Now, because the host is waiting when it is needed.
        m_capacity = PseudoTerminal::measureCapacity();
    }
}

// Everything that has come in, in the order in which the host did it: opening the port comes before
// the bytes, and bytes come before a request for the lines, which the host waits for.
void EventLoop::step() {
    if (m_terminal.plugged()) {
        takePortChanges();
        takeHostBytes();
    }
    if (m_lines) {
        m_lines->serve([this](const LineRequest& request) {
            takeHostBytes();
            return m_adapter.lineRequest(request, clockNow());
        });
    }
    m_adapter.advance(clockNow());
    if (m_unplugged) {
        leave();
    }
}

void EventLoop::takePortChanges() {
    for (const bool opened : m_watch.changes(m_terminal)) {
        if (opened) {
            m_adapter.portOpened(clockNow());
        } else {
            takeHostBytes();
            m_adapter.portClosed(clockNow());
        }
    }
}

void EventLoop::takeHostBytes() {
    while (m_terminal.plugged() && m_adapter.room() > 0) {
        const Bytes bytes = m_terminal.receive(m_adapter.room());
        if (bytes.empty()) {
            break;
        }
        m_adapter.hostBytes(bytes, clockNow());
    }
}

void EventLoop::addTo(std::vector<pollfd>& entries) const {
    if (m_terminal.plugged()) {
        entries.push_back({.fd = m_watch.fd(), .events = POLLIN, .revents = 0});
        // A port that nobody has open reports so without end, and one that is stuck has bytes that
        // nobody takes: neither may keep the loop awake.
        const bool listen = m_watch.open() && m_adapter.room() > 0;
        entries.push_back(
            {.fd = listen ? m_terminal.master() : -1, .events = POLLIN, .revents = 0});
    }
    if (m_lines) {
        m_lines->addTo(entries);
    }
}

std::optional<BoardTime> EventLoop::nextDeadline() const {
    const std::optional<BoardTime> deadline = m_adapter.nextDeadline();
    if (!m_terminal.plugged() || m_watch.fd() >= 0) {
        return deadline;
    }
    const BoardTime look = clockNow() + kLook;
    return deadline ? std::min(*deadline, look) : look;
}

std::uint32_t EventLoop::bitsPerSecond() {
    return m_terminal.bitsPerSecond();
}

std::size_t EventLoop::send(std::span<const std::uint8_t> bytes) {
    return m_terminal.send(bytes);
}

// Asked for in the middle of a step that may be serving a request for the lines.
void EventLoop::unplug() {
    m_unplugged = true;
}

void EventLoop::leave() {
    // First the lines: another pseudo-terminal may get the port's number at once.
    m_lines.reset();
    m_terminal.unplug();
}

void EventLoop::jam(std::size_t room) {
    m_terminal.jam(m_capacity, room);
}

} // namespace flashwriter::board
