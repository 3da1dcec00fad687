// The adapter's lines, and the faults that concern the adapter as a whole.

#include "board/Adapter.h"

#include <cerrno>
#include <utility>

#include <sys/ioctl.h>

namespace flashwriter::board {

namespace {

std::string onOff(const char* name, bool on) {
    return std::string(name) + (on ? " on" : " off");
}

} // namespace

void Adapter::portOpened(BoardTime now) {
    advance(now);
    m_open = true;
    note(TranscriptRecord::Kind::line, now, "port opened");
    setLines(true, true, m_break, now);
    jamIfDue(now);
}

void Adapter::portClosed(BoardTime now, BreakAtClose breakAtClose) {
    advance(now);
    m_open = false;
    ++m_closings;
    endSession();
    note(TranscriptRecord::Kind::line, now, "port closed");
    setLines(false, false, m_break && breakAtClose == BreakAtClose::stays, now);
}

LineAnswer Adapter::lineRequest(const LineRequest& request, BoardTime now) {
    advance(now);
    if (m_unplugged) {
        return {.error = EIO, .bits = 0};
    }
    if (const Fault* const fault = lineFault(request.operation)) {
        const auto error = static_cast<std::int32_t>(fault->parameterOr(EIO));
        note(TranscriptRecord::Kind::line, now,
             std::string("a request for the lines failed (fault: ") + faultName(fault->kind) + ")");
        return {.error = error, .bits = 0};
    }
    std::uint32_t bits = lineBits();
    bool breakHeld = m_break;
    switch (request.operation) {
    case LineOperation::get:
        return {.error = 0, .bits = bits};
    case LineOperation::set:
        bits = request.bits;
        break;
    case LineOperation::switchOn:
        bits |= request.bits;
        break;
    case LineOperation::switchOff:
        bits &= ~request.bits;
        break;
    case LineOperation::startBreak:
        breakHeld = true;
        break;
    case LineOperation::endBreak:
        breakHeld = false;
        break;
    default:
        return {.error = EINVAL, .bits = 0};
    }
    setLines((bits & TIOCM_DTR) != 0, (bits & TIOCM_RTS) != 0, breakHeld, now);
    return {};
}

std::uint32_t Adapter::lineBits() const {
    return (m_dtr ? std::uint32_t{TIOCM_DTR} : 0U) | (m_rts ? std::uint32_t{TIOCM_RTS} : 0U);
}

const Fault* Adapter::lineFault(LineOperation operation) {
    switch (operation) {
    case LineOperation::get:
        return m_faults.find(FaultKind::failGet, ++m_gets);
    case LineOperation::set:
    case LineOperation::switchOn:
    case LineOperation::switchOff:
        return m_faults.find(FaultKind::failSet, ++m_sets);
    case LineOperation::startBreak:
    case LineOperation::endBreak:
        return m_faults.find(FaultKind::failBreak, ++m_breaks);
    }
    return nullptr;
}

void Adapter::setLines(bool dtr, bool rts, bool breakHeld, BoardTime now) {
    std::string changes;
    const auto change = [&changes](bool& line, bool to, const char* name) {
        if (std::exchange(line, to) != to) {
            changes += (changes.empty() ? "" : ", ") + onOff(name, to);
        }
    };
    change(m_dtr, dtr, "DTR");
    change(m_rts, rts, "RTS");
    change(m_break, breakHeld, "BREAK");
    if (changes.empty()) {
        return;
    }
    note(TranscriptRecord::Kind::line, now, changes);
    m_target.setLines(m_dtr, m_break, now);
    collectEvents();
    if (m_target.mode() == TargetMode::inReset) {
        dropOutgoing();
    }
}

// A target in reset sends no more: what it has not sent yet is lost.
void Adapter::dropOutgoing() {
    for (const auto& [due, outgoing] : m_outgoing) {
        m_transcript[outgoing.record].meaning += " (reset came before it was sent)";
    }
    m_outgoing.clear();
}

void Adapter::unplug(BoardTime now, const std::string& why) {
    m_unplugged = true;
    m_open = false;
    m_inFlight.clear();
    m_outgoing.clear();
    collectEvents();
    endSession();
    note(TranscriptRecord::Kind::fault, now, "unplugged " + why);
    m_port.unplug();
}

// The buffers have to be full before the reply goes out that lets the host send the next frame.
void Adapter::jamIfDue(BoardTime now) {
    const Fault* const fault = m_faults.find(FaultKind::stuck, m_target.hostFramesBegun() + 1);
    if (fault == nullptr || m_stuck) {
        return;
    }
    m_stuck = true;
    note(TranscriptRecord::Kind::fault, now, "takes no more bytes");
    if (fault->parameter != Fault::kDefault) {
        m_port.jam(static_cast<std::size_t>(fault->parameter));
    }
}

} // namespace flashwriter::board
