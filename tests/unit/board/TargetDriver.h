#pragma once

#include "HostSide.h"
#include "board/Target.h"

#include <chrono>
#include <string>
#include <vector>

namespace flashwriter::board {

// A target and a clock that only moves when told to: a frame goes in, its replies come out.
class TargetDriver {
public:
    explicit TargetDriver(const TargetOptions& options = {}) : m_target(options) {
        m_target.takeEvents();
    }

    void wait(BoardTime span) { m_now += span; }

    // Reset with BREAK held, release after a millisecond, end of BREAK, zero byte.
    void enter(bool inverted = false) {
        m_target.setLines(!inverted, true, m_now);
        wait(std::chrono::milliseconds(1));
        m_target.setLines(inverted, true, m_now);
        wait(std::chrono::milliseconds(1));
        m_target.setLines(inverted, false, m_now);
        send({0x00});
    }

    // Up to the accepted Reset command.
    void connect() {
        enter();
        send(commandFrame({0x9A, 0, 33}));
        send(kResetFrame);
    }

    // All replies to these bytes, which arrive at once; the clock then goes on to the last of them.
    std::vector<Bytes> send(const Bytes& bytes, Reception reception = Reception::clean) {
        for (const std::uint8_t byte : bytes) {
            m_target.receive({.value = byte, .begin = m_now, .end = m_now, .reception = reception});
        }
        std::vector<Bytes> replies;
        for (const TargetEvent& event : m_target.takeEvents()) {
            m_violations += event.violation ? 1 : 0;
            if (event.kind == TargetEvent::Kind::reply) {
                replies.push_back(event.bytes);
                m_answered = event.begin;
            }
        }
        m_took = replies.empty() ? BoardTime::zero() : m_answered - m_now;
        m_now = replies.empty() ? m_now : m_answered;
        return replies;
    }

    Target& target() { return m_target; }
    TargetMode mode() const { return m_target.mode(); }
    BoardTime now() const { return m_now; }
    BoardTime took() const { return m_took; } // from the last frame to its last reply
    int violations() const { return m_violations; }

private:
    Target m_target;
    BoardTime m_now{};
    BoardTime m_answered{};
    BoardTime m_took{};
    int m_violations = 0;
};

using Replies = std::vector<Bytes>;

// A status frame with this status, put together by hand.
inline Bytes statusFrame(std::uint8_t status) {
    return {0x02, 0x01, status, static_cast<std::uint8_t>(0xFF - status), 0x03};
}

} // namespace flashwriter::board
