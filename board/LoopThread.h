#pragma once

#include <thread>
#include <utility>

namespace flashwriter::board {

// A loop and the thread that runs it. stop() and destruction must not overlap each other.
template <typename Loop>
class LoopThread {
public:
    // The arguments are the loop's.
    template <typename... Arguments>
    explicit LoopThread(Arguments&&... arguments)
        : m_loop(std::forward<Arguments>(arguments)...), m_thread([this] { m_loop.run(); }) {}
    ~LoopThread() { stop(); }
    LoopThread(const LoopThread&) = delete;
    LoopThread& operator=(const LoopThread&) = delete;

    // The loop can still be looked at afterwards.
    void stop() {
        if (m_thread.joinable()) {
            m_loop.askToStop();
            m_thread.join();
        }
    }

    const Loop& loop() const { return m_loop; }

private:
    Loop m_loop;
    std::thread m_thread;
};

} // namespace flashwriter::board
