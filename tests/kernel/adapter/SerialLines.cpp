#include "tests/kernel/adapter/SerialLines.h"

#include <sys/ioctl.h>

namespace flashwriter::kernel {

using board::Adapter;
using board::BoardTime;
using board::LineOperation;

bool SerialLines::set(bool dtr, bool rts, BoardTime now) {
    const bool wasOpen = m_dtr || m_rts;
    const bool isOpen = dtr || rts;
    bool done = true;
    if (isOpen && !wasOpen) {
        m_adapter.portOpened(now);
    }
    if (wasOpen && !isOpen) {
        // Drivers that have a USB adapter behind them leave a BREAK on.
        m_adapter.portClosed(now, Adapter::BreakAtClose::stays);
    } else if (wasOpen || (isOpen && !(dtr && rts))) {
        const auto bits = static_cast<std::uint32_t>((dtr ? TIOCM_DTR : 0) | (rts ? TIOCM_RTS : 0));
        done = request(LineOperation::set, bits, now);
    }
    if (done) {
        m_dtr = dtr;
        m_rts = rts;
    }
    return done;
}

bool SerialLines::setBreak(bool on, BoardTime now) {
    return request(on ? LineOperation::startBreak : LineOperation::endBreak, 0, now);
}

bool SerialLines::canBeRead(BoardTime now) {
    return request(LineOperation::get, 0, now);
}

bool SerialLines::request(LineOperation operation, std::uint32_t bits, BoardTime now) {
    return m_adapter.lineRequest({.operation = operation, .bits = bits}, now).error == 0;
}

} // namespace flashwriter::kernel
