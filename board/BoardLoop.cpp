#include "board/BoardLoop.h"

#include "board/Priority.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <sys/eventfd.h>

namespace flashwriter::board {

namespace {

timespec toTimespec(BoardTime span) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(span);
    return {.tv_sec = seconds.count(), .tv_nsec = (span - seconds).count()};
}

} // namespace

BoardTime clockNow() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

BoardLoop::BoardLoop(bool realTime)
    : m_realTime(realTime), m_wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!m_wakeUp.valid()) {
        throw std::system_error(errno, std::generic_category(), "cannot make an event descriptor");
    }
}

void BoardLoop::run() {
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
    leave();
}

void BoardLoop::askToStop() {
    m_stop = true;
    static_cast<void>(eventfd_write(m_wakeUp.get(), 1));
}

void BoardLoop::sleep() {
    std::vector<pollfd> entries{{.fd = m_wakeUp.get(), .events = POLLIN, .revents = 0}};
    addTo(entries);
    const std::optional<BoardTime> deadline = nextDeadline();
    timespec rest{};
    if (deadline) {
        rest = toTimespec(std::max(*deadline - clockNow(), BoardTime::zero()));
    }
    ppoll(entries.data(), entries.size(), deadline ? &rest : nullptr, nullptr);
}

} // namespace flashwriter::board
