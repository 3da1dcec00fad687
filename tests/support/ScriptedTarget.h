#pragma once

#include "tests/support/PseudoTerminal.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace flashwriter::testing {

using Bytes = std::vector<std::uint8_t>;

// A status frame, or any other frame of a target, around its data, with its SUM.
Bytes targetFrame(const Bytes& data);

// Answers the n-th frame of the program with the n-th answer of a script, whatever the frame says,
// and keeps all frames. What is not part of a frame, such as the one zero byte, is kept as a frame
// of one byte and gets no answer.
class ScriptedTarget {
public:
    struct Answer {
        Bytes bytes; // none: silence
        std::chrono::milliseconds delay{0};
        Bytes more{}; // behind the bytes, after a pause of its own
        std::chrono::milliseconds pause{0};
    };

    ScriptedTarget();
    ~ScriptedTarget();
    ScriptedTarget(const ScriptedTarget&) = delete;
    ScriptedTarget& operator=(const ScriptedTarget&) = delete;

    const char* portPath() const { return m_terminal.portPath(); }
    int master() const { return m_terminal.master(); }

    void answer(const Bytes& bytes) { answer(Answer{bytes}); }
    void answer(const Answer& answer);
    void beSilent() { answer(Bytes{}); }

    // The frames so far.
    std::vector<Bytes> frames() const;
    // The frames, once there are that many (or after a few seconds).
    std::vector<Bytes> frames(std::size_t count) const;

private:
    void run();
    void take(std::uint8_t byte);
    void reply();

    PseudoTerminal m_terminal;
    mutable std::mutex m_mutex;
    std::deque<Answer> m_answers;
    std::vector<Bytes> m_frames;
    Bytes m_partial;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

} // namespace flashwriter::testing
