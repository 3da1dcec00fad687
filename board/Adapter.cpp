#include "board/Adapter.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace flashwriter::board {

namespace {

// What an adapter has in hand at most before it takes no more from the host.
constexpr std::size_t kBuffer = 4096;

std::int64_t microseconds(BoardTime time) {
    return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

// From the board's clock to the wall's, as they stand to each other now.
std::int64_t realTimeOffset() {
    const auto real = std::chrono::system_clock::now().time_since_epoch();
    const auto steady = std::chrono::steady_clock::now().time_since_epoch();
    return microseconds(std::chrono::duration_cast<BoardTime>(real)) - microseconds(steady);
}

// Mode entry faults belong to the target, which knows when it enters.
TargetOptions withSlowEntries(const BoardOptions& options) {
    TargetOptions target = options.target;
    for (const Fault& fault : options.faults) {
        if (fault.kind == FaultKind::slowEntry) {
            target.slowEntries.push_back(
                {.n = fault.n, .time = std::chrono::milliseconds(fault.parameterOr(150))});
        }
    }
    return target;
}

TranscriptRecord::Kind recordKind(TargetEvent::Kind kind) {
    switch (kind) {
    case TargetEvent::Kind::hostFrame:
        return TranscriptRecord::Kind::hostFrame;
    case TargetEvent::Kind::unheard:
        return TranscriptRecord::Kind::unheard;
    case TargetEvent::Kind::reply:
        return TranscriptRecord::Kind::reply;
    case TargetEvent::Kind::chatter:
        return TranscriptRecord::Kind::chatter;
    case TargetEvent::Kind::mode:
        break;
    }
    return TranscriptRecord::Kind::mode;
}

// Makes noise of the bytes for a host that listens at another speed; false then.
bool arriveWell(Bytes& bytes, std::uint32_t boardSpeed, std::uint32_t hostSpeed) {
    const bool well = speedsAgree(hostSpeed, boardSpeed);
    if (!well) {
        std::transform(bytes.begin(), bytes.end(), bytes.begin(), garble);
    }
    return well;
}

} // namespace

Adapter::Adapter(const BoardOptions& options, HostPort& port, BoardTime now)
    : m_port(port), m_faults(options.faults), m_target(withSlowEntries(options), now),
      m_wire(options.pace), m_chatterWire(options.pace) {
    collectEvents();
}

std::size_t Adapter::room() const {
    return m_stuck || m_unplugged ? 0 : kBuffer - std::min(kBuffer, m_inFlight.size());
}

void Adapter::hostBytes(std::span<const std::uint8_t> bytes, BoardTime now) {
    advance(now);
    const std::uint32_t speed = m_port.bitsPerSecond();
    const bool collision = collides(now);
    for (const std::uint8_t value : bytes) {
        InFlight flying{.byte = {.value = value, .begin = now, .end = now}, .hostSpeed = speed};
        if (collision) {
            flying.byte.reception = Reception::collision;
            flying.byte.end = std::max(now, m_inFlight.empty() ? now : m_inFlight.back().byte.end);
        } else {
            flying.byte.begin = std::max(now, m_wire.freeAt());
            flying.byte.end = m_wire.occupy(now, 1, speed);
        }
        if (m_break) {
            flying.byte.reception = Reception::inBreak;
        }
        m_inFlight.push_back(flying);
    }
    advance(now);
}

void Adapter::speedChanged(BoardTime now) {
    advance(now);
    auto waiting = std::find_if(m_inFlight.begin(), m_inFlight.end(),
                                [now](const InFlight& flying) { return flying.byte.begin > now; });
    if (waiting == m_inFlight.end()) {
        return;
    }
    const std::uint32_t speed = m_port.bitsPerSecond();
    m_wire.freeFrom(waiting == m_inFlight.begin() ? now : std::prev(waiting)->byte.end);
    for (; waiting != m_inFlight.end(); ++waiting) {
        waiting->byte.begin = m_wire.freeAt();
        waiting->byte.end = m_wire.occupy(now, 1, speed);
        waiting->hostSpeed = speed;
    }
}

bool Adapter::collides(BoardTime now) const {
    return std::any_of(m_outgoing.begin(), m_outgoing.end(), [now](const auto& entry) {
        const Outgoing& outgoing = entry.second;
        return outgoing.isReply && !outgoing.delayed && outgoing.start <= now && now < entry.first;
    });
}

void Adapter::advance(BoardTime now) {
    if (m_unplugged) {
        return;
    }
    deliver(now);
    m_target.advance(now);
    collectEvents();
    sendDue(now);
}

void Adapter::deliver(BoardTime now) {
    while (!m_inFlight.empty() && m_inFlight.front().byte.end <= now) {
        const InFlight flying = m_inFlight.front();
        m_inFlight.pop_front();
        if (!deliverOne(flying)) {
            unplug(now, "in the middle of a host frame");
            return;
        }
    }
}

// False when the adapter is to be unplugged.
bool Adapter::deliverOne(const InFlight& flying) {
    WireByte byte = flying.byte;
    const bool readable = speedsAgree(flying.hostSpeed, m_target.bitsPerSecond());
    if (!readable && m_target.mode() != TargetMode::inReset) {
        byte.reception = Reception::wrongSpeed;
        byte.value = garble(byte.value);
    }
    m_target.receive(byte);
    const Fault* const fault = m_faults.find(FaultKind::unplugFrame, m_target.hostFramesBegun());
    return fault == nullptr || m_target.hostFramesBegun() == 0 ||
           m_target.bytesOfLastFrame() < static_cast<std::size_t>(fault->parameterOr(1));
}

void Adapter::collectEvents() {
    const std::int64_t offset = realTimeOffset();
    m_programmed = m_programmed || m_target.mode() == TargetMode::ready;
    for (TargetEvent& event : m_target.takeEvents()) {
        const bool hasBytes = event.kind != TargetEvent::Kind::mode;
        TranscriptRecord record{.kind = recordKind(event.kind),
                                .begin = microseconds(event.begin),
                                .due = microseconds(event.end),
                                .written = 0,
                                .realTimeOffset = offset,
                                .bytes = {},
                                .meaning = event.meaning,
                                .violation = event.violation,
                                .boardSpeed = hasBytes ? event.bitsPerSecond : 0,
                                .hostSpeed = hasBytes && !m_unplugged ? m_port.bitsPerSecond() : 0};
        m_violations += event.violation ? 1 : 0;
        if (event.kind == TargetEvent::Kind::reply) {
            queueReply(event, std::move(record));
        } else if (event.kind == TargetEvent::Kind::chatter) {
            queueChatter(event, std::move(record));
        } else {
            record.written = hasBytes ? 0 : record.due;
            record.bytes = std::move(event.bytes);
            m_transcript.push_back(std::move(record));
        }
    }
}

void Adapter::endSession() {
    if (std::exchange(m_programmed, false)) {
        ++m_sessions;
    }
}

void Adapter::queueReply(const TargetEvent& event, TranscriptRecord record) {
    SpoiltReply spoilt = m_faults.spoil(event.bytes);
    const BoardTime start = std::max(event.begin, m_wire.freeAt() + event.pause);
    const BoardTime end = m_wire.occupy(start, spoilt.bytes.size(), event.bitsPerSecond);
    const BoardTime due = end + spoilt.delay;
    record.due = microseconds(due);
    if (!spoilt.note.empty()) {
        record.meaning += " (fault: " + spoilt.note + ")";
    }
    const bool silent = spoilt.bytes.empty();
    m_transcript.push_back(std::move(record));
    if (!silent) {
        m_outgoing.emplace(due, Outgoing{.bytes = std::move(spoilt.bytes),
                                         .start = start,
                                         .delayed = spoilt.delay > BoardTime::zero(),
                                         .isReply = true,
                                         .boardSpeed = event.bitsPerSecond,
                                         .unplugAfter = spoilt.unplugAfter,
                                         .record = m_transcript.size() - 1});
    }
}

void Adapter::queueChatter(const TargetEvent& event, TranscriptRecord record) {
    if (!m_open) { // a transcript of it would grow without end
        if (isHeard()) {
            Bytes bytes = event.bytes;
            arriveWell(bytes, event.bitsPerSecond, m_port.bitsPerSecond());
            m_port.send(bytes);
        }
        return;
    }
    const BoardTime due =
        m_chatterWire.occupy(event.begin, event.bytes.size(), event.bitsPerSecond);
    record.due = microseconds(due);
    m_transcript.push_back(std::move(record));
    m_outgoing.emplace(due, Outgoing{.bytes = event.bytes,
                                     .start = event.begin,
                                     .delayed = false,
                                     .isReply = false,
                                     .boardSpeed = event.bitsPerSecond,
                                     .unplugAfter = {},
                                     .record = m_transcript.size() - 1});
}

void Adapter::sendDue(BoardTime now) {
    while (!m_outgoing.empty() && m_outgoing.begin()->first <= now && !m_unplugged) {
        Outgoing outgoing = std::move(m_outgoing.begin()->second);
        m_outgoing.erase(m_outgoing.begin());
        jamIfDue(now);
        hand(outgoing, now);
    }
}

void Adapter::hand(Outgoing& outgoing, BoardTime now) {
    TranscriptRecord& record = m_transcript[outgoing.record];
    record.hostSpeed = m_port.bitsPerSecond();
    if (!isHeard()) {
        record.meaning += " (the port is closed)";
        return;
    }
    if (!arriveWell(outgoing.bytes, outgoing.boardSpeed, record.hostSpeed)) {
        record.meaning += " (noise for the host: it listens at another speed)";
    }
    if (outgoing.unplugAfter && *outgoing.unplugAfter < outgoing.bytes.size()) {
        outgoing.bytes.resize(*outgoing.unplugAfter);
    }
    outgoing.bytes.resize(m_port.send(outgoing.bytes));
    record.written = microseconds(now);
    record.bytes = std::move(outgoing.bytes);
    if (outgoing.unplugAfter) {
        unplug(now, "in the middle of a reply");
    }
}

std::optional<BoardTime> Adapter::nextDeadline() const {
    if (m_unplugged) {
        return std::nullopt;
    }
    std::optional<BoardTime> deadline = m_target.nextDeadline();
    const auto consider = [&deadline](BoardTime moment) {
        deadline = deadline ? std::min(*deadline, moment) : moment;
    };
    if (!m_inFlight.empty()) {
        // Not the first: the target can wait for a frame as a whole, and a wake-up costs the host.
        consider(m_inFlight.back().byte.end);
    }
    if (!m_outgoing.empty()) {
        consider(m_outgoing.begin()->first);
    }
    return deadline;
}

TranscriptRecord& Adapter::note(TranscriptRecord::Kind kind, BoardTime now, std::string meaning) {
    const std::int64_t moment = microseconds(now);
    TranscriptRecord record;
    record.kind = kind;
    record.begin = record.due = record.written = moment;
    record.realTimeOffset = realTimeOffset();
    record.meaning = std::move(meaning);
    m_transcript.push_back(std::move(record));
    return m_transcript.back();
}

} // namespace flashwriter::board
