#include "board/EventLoop.h"

#include "board/Priority.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

#include <poll.h>
#include <sys/eventfd.h>

namespace flashwriter::board {

namespace {

BoardTime clockNow() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

// How often to look when the system does not tell that the port was opened.
constexpr BoardTime kLook = std::chrono::milliseconds(5);

timespec toTimespec(BoardTime span) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(span);
    return {.tv_sec = seconds.count(), .tv_nsec = (span - seconds).count()};
}

} // namespace

EventLoop::EventLoop(const BoardOptions& options)
    : m_realTime(options.realTime), m_wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_path(m_terminal.path()), m_watch(m_path), m_lines(m_path),
      m_adapter(options, *this, clockNow()) {
    if (!m_wakeUp.valid()) {
        throw std::system_error(errno, std::generic_category(), "cannot make an event descriptor");
    }
    const auto& faults = options.faults;
    if (std::any_of(faults.begin(), faults.end(),
                    [](const Fault& fault) { return fault.kind == FaultKind::stuck; })) {
        // Now, because the host is waiting when it is needed.
        m_capacity = PseudoTerminal::measureCapacity();
    }
}

void EventLoop::run() {
    makeThreadPrompt(m_realTime);
    while (!m_stop) {
        {
            const std::lock_guard lock(m_mutex);
            step();
        }
        m_changed.notify_all();
        sleep();
    }
    const std::lock_guard lock(m_mutex);
    removePort();
}

void EventLoop::askToStop() {
    m_stop = true;
    static_cast<void>(eventfd_write(m_wakeUp.get(), 1));
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
        removePort();
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

void EventLoop::sleep() {
    std::vector<pollfd> entries{{.fd = m_wakeUp.get(), .events = POLLIN, .revents = 0}};
    std::optional<BoardTime> deadline = m_adapter.nextDeadline();
    if (m_terminal.plugged()) {
        entries.push_back({.fd = m_watch.fd(), .events = POLLIN, .revents = 0});
        // A port that nobody has open reports so without end, and one that is stuck has bytes that
        // nobody takes: neither may keep the loop awake.
        const bool listen = m_watch.open() && m_adapter.room() > 0;
        entries.push_back(
            {.fd = listen ? m_terminal.master() : -1, .events = POLLIN, .revents = 0});
        if (m_watch.fd() < 0) {
            const BoardTime look = clockNow() + kLook;
            deadline = deadline ? std::min(*deadline, look) : look;
        }
    }
    if (m_lines) {
        m_lines->addTo(entries);
    }
    timespec rest{};
    if (deadline) {
        rest = toTimespec(std::max(*deadline - clockNow(), BoardTime::zero()));
    }
    ppoll(entries.data(), entries.size(), deadline ? &rest : nullptr, nullptr);
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

void EventLoop::removePort() {
    // First the lines: another pseudo-terminal may get the port's number at once.
    m_lines.reset();
    m_terminal.unplug();
}

void EventLoop::jam(std::size_t room) {
    m_terminal.jam(m_capacity, room);
}

} // namespace flashwriter::board
