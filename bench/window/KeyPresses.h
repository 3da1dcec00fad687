#pragma once

#include <chrono>
#include <deque>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>

namespace flashwriter::bench {

using KeyClock = std::chrono::steady_clock;

// A person who presses digits, one every 50 to 150 ms and at no regular times, for as long as the
// object lives or until stop(). The thread has a connection to the screen of its own.
class KeyPresses {
public:
    KeyPresses();

    // When the key was pressed that has now arrived somewhere. Nothing when that is not known, as
    // for a press that has been asked for before. Presses arrive in their order: those before it
    // count as lost. Any thread.
    std::optional<KeyClock::time_point> arrived(char digit);

    // Presses no more. What is left are the presses that have been neither asked for nor lost.
    std::deque<KeyClock::time_point> stop();

    std::size_t sent() const { return m_sent; } // after stop()
    std::size_t lost() const { return m_lost; }

private:
    struct Press {
        char digit;
        KeyClock::time_point at;
    };

    void press(const std::stop_token& stopping);

    std::mutex m_mutex;
    std::deque<Press> m_open; // not arrived yet, the oldest first
    std::size_t m_sent = 0;
    std::size_t m_lost = 0;
    std::jthread m_thread; // the last: uses all of the above
};

} // namespace flashwriter::bench
