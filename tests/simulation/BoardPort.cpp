#include "tests/simulation/BoardPort.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace flashwriter::simulation {

namespace {

// What the system keeps of the program's output when the adapter takes no more.
constexpr std::size_t OUTPUT_CAPACITY = 4096;

} // namespace

BoardPort::BoardPort(const board::BoardOptions& options) : m_adapter(options, *this) {}

std::string BoardPort::transcriptText() const {
    board::Transcript transcript = m_adapter.transcript();
    for (board::TranscriptRecord& record : transcript) {
        record.realTimeOffset = 0;
    }
    return board::transcriptText(transcript);
}

int BoardPort::open(VirtualTime now) {
    if (m_unplugged) {
        return ENOENT;
    }
    m_adapter.portOpened(now);
    return 0;
}

void BoardPort::close(VirtualTime now) {
    if (!m_unplugged) {
        drain(now);
        m_adapter.portClosed(now);
    }
    m_output.clear();
}

int BoardPort::setSpeed(std::uint64_t bitsPerSecond, VirtualTime now) {
    if (m_unplugged) {
        return EIO;
    }
    drain(now);
    m_speed = static_cast<std::uint32_t>(bitsPerSecond);
    return 0;
}

board::LineAnswer BoardPort::lines(const board::LineRequest& request, VirtualTime now) {
    drain(now);
    return m_adapter.lineRequest(request, now);
}

ssize_t BoardPort::write(std::span<const std::uint8_t> bytes, VirtualTime now) {
    if (m_unplugged) {
        return -EIO;
    }
    drain(now);
    const std::size_t room =
        OUTPUT_CAPACITY - std::min(OUTPUT_CAPACITY, m_output.size() + m_filler);
    const auto taken = bytes.first(std::min(room, bytes.size()));
    m_output.insert(m_output.end(), taken.begin(), taken.end());
    drain(now);
    return taken.empty() ? -EAGAIN : static_cast<ssize_t>(taken.size());
}

void BoardPort::discardOutput(VirtualTime now) {
    drain(now);
    m_output.clear();
    m_filler = 0;
}

void BoardPort::advance(VirtualTime now) {
    const auto deadline = m_adapter.nextDeadline();
    if (deadline && *deadline <= now) {
        m_adapter.advance(now);
    }
    if (!m_output.empty()) {
        drain(now);
    }
}

std::size_t BoardPort::send(std::span<const std::uint8_t> bytes) {
    arrive(bytes);
    return bytes.size();
}

void BoardPort::jam(std::size_t room) {
    m_filler = OUTPUT_CAPACITY - std::min(OUTPUT_CAPACITY, room);
}

// The adapter has a hand free whenever it is not stuck.
void BoardPort::drain(VirtualTime now) {
    const std::size_t count = std::min(m_output.size(), m_adapter.room());
    if (count > 0) {
        const auto end = m_output.begin() + static_cast<std::ptrdiff_t>(count);
        const board::Bytes bytes(m_output.begin(), end);
        m_output.erase(m_output.begin(), end);
        m_adapter.hostBytes(bytes, now);
    }
}

} // namespace flashwriter::simulation
