#include "tests/fuzz/driver/ScriptedPort.h"

#include "board/Protocol.h"
#include "tests/fuzz/driver/GoodAnswer.h"

#include <algorithm>
#include <cerrno>
#include <chrono>

namespace flashwriter::fuzz {

namespace {

using std::chrono::milliseconds;

constexpr int ANSWERS_TO_ONE_WRITE = 8;

// As much as the receive buffer takes if nobody reads. Of more, some would be lost there, and the
// proof of a success could not know what.
constexpr std::size_t ANSWERS_IN_ALL = 1023;

// Changes a data byte of the last of these frames, and its sum with it.
void lie(std::vector<std::uint8_t>& frames, std::size_t place, std::uint8_t value) {
    if (frames.empty()) {
        return;
    }
    std::size_t last = 0;
    while (last + frames[last + 1] + board::kFrameOverhead < frames.size()) {
        last += frames[last + 1] + board::kFrameOverhead;
    }
    const std::size_t count = frames[last + 1];
    frames[last + 2 + place % count] ^= value;
    frames[last + 2 + count] = board::frameSum(std::span(frames).subspan(last + 1, count + 1));
}

} // namespace

int ScriptedPort::open(VirtualTime /*now*/) {
    return 0;
}

int ScriptedPort::setSpeed(std::uint64_t bitsPerSecond, VirtualTime /*now*/) {
    // The program sets 115200 with the other attributes, and nobody asks how that went.
    return m_unplugged || (m_header.speedFails() && bitsPerSecond != 115200) ? EIO : 0;
}

board::LineAnswer ScriptedPort::lines(const board::LineRequest& /*request*/, VirtualTime /*now*/) {
    const unsigned request = m_lineRequests++;
    const bool fails = request < 8 && (m_header.failingLines >> request & 1) != 0;
    return {.error = fails || m_unplugged ? EIO : 0, .bits = 0};
}

void ScriptedPort::close(VirtualTime /*now*/) {}

ssize_t ScriptedPort::write(std::span<const std::uint8_t> bytes, VirtualTime now) {
    if (m_unplugged) {
        m_written.emplace_back(bytes.begin(), bytes.end()); // it counts as sent
        return -EIO;
    }
    auto taken = static_cast<ssize_t>(bytes.size());
    std::uint8_t choice = MORE;
    for (int i = 0; i < ANSWERS_TO_ONE_WRITE && (choice & MORE) != 0; ++i) {
        choice = bytes.size() > 1 ? m_script.next() : std::uint8_t{0};
        taken = std::min(taken, answer(bytes, choice, now));
    }
    if (taken < 0 || taken == static_cast<ssize_t>(bytes.size())) {
        m_written.emplace_back(bytes.begin(), bytes.end());
    }
    return taken;
}

// How many bytes the device takes, or a negative errno.
ssize_t ScriptedPort::answer(std::span<const std::uint8_t> frame, std::uint8_t choice,
                             VirtualTime now) {
    const auto kind = static_cast<Answer>((choice & 0x0F) % ANSWERS);
    VirtualTime due = now + (choice & LATER) / 0x10 * milliseconds(16);
    switch (kind) {
    case Answer::partly:
        return static_cast<ssize_t>(m_script.next() % frame.size());
    case Answer::unplugged:
        m_unplugged = true;
        return -EIO;
    case Answer::refused:
        return -EIO;
    case Answer::late:
        due += m_script.next() * milliseconds(4);
        break;
    default:
        break;
    }
    m_due.emplace(due, makeAnswer(kind, goodAnswer(frame, m_flash)));
    return static_cast<ssize_t>(frame.size());
}

ScriptedPort::Bytes ScriptedPort::makeAnswer(Answer kind, const Bytes& good) {
    Bytes bytes = good;
    switch (kind) {
    case Answer::silence:
        return {};
    case Answer::raw: {
        const auto given = m_script.next(m_script.next());
        return {given.begin(), given.end()};
    }
    case Answer::framed: {
        const auto given = m_script.next(m_script.next());
        return given.empty() ? Bytes{} : board::makeReply(given);
    }
    case Answer::changed: {
        const std::size_t place = m_script.next();
        const std::uint8_t value = m_script.next();
        if (!bytes.empty()) {
            bytes[place % bytes.size()] ^= value;
        }
        return bytes;
    }
    case Answer::status:
        return board::makeReply(std::vector<std::uint8_t>{m_script.next()});
    case Answer::doubled:
        bytes.insert(bytes.end(), good.begin(), good.end());
        return bytes;
    case Answer::truncated:
        bytes.resize(std::min<std::size_t>(bytes.size(), m_script.next()));
        return bytes;
    case Answer::lied: {
        const std::size_t place = m_script.next();
        lie(bytes, place, m_script.next());
        return bytes;
    }
    default:
        return bytes;
    }
}

void ScriptedPort::discardOutput(VirtualTime /*now*/) {
    m_discards.push_back(m_received.size());
}

void ScriptedPort::advance(VirtualTime now) {
    while (!m_due.empty() && m_due.begin()->first <= now && !m_unplugged) {
        const Bytes bytes = std::move(m_due.begin()->second);
        m_due.erase(m_due.begin());
        if (m_received.size() + bytes.size() > ANSWERS_IN_ALL) {
            continue;
        }
        m_received.insert(m_received.end(), bytes.begin(), bytes.end());
        arrive(bytes);
    }
}

} // namespace flashwriter::fuzz
