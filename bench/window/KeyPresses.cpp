#include "bench/window/KeyPresses.h"

#include "bench/window/Screen.h"

#include <algorithm>
#include <random>

namespace flashwriter::bench {

namespace {

constexpr int SHORTEST_PAUSE = 50; // milliseconds
constexpr int LONGEST_PAUSE = 150;

} // namespace

KeyPresses::KeyPresses() : m_thread([this](const std::stop_token& stopping) { press(stopping); }) {}

void KeyPresses::press(const std::stop_token& stopping) {
    const Screen screen;
    std::minstd_rand random; // the same in every run
    std::uniform_int_distribution<int> pause(SHORTEST_PAUSE, LONGEST_PAUSE);
    char digit = '0';
    while (!stopping.stop_requested()) {
        {
            const std::lock_guard lock(m_mutex);
            m_open.push_back({digit, KeyClock::now()});
            ++m_sent;
        }
        screen.pressDigit(digit);
        digit = digit == '9' ? '0' : static_cast<char>(digit + 1);
        std::this_thread::sleep_for(std::chrono::milliseconds(pause(random)));
    }
}

std::optional<KeyClock::time_point> KeyPresses::arrived(char digit) {
    const std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_open.begin(), m_open.end(),
                                    [digit](const Press& it) { return it.digit == digit; });
    if (found == m_open.end()) {
        return std::nullopt;
    }
    const KeyClock::time_point at = found->at;
    m_lost += static_cast<std::size_t>(found - m_open.begin());
    m_open.erase(m_open.begin(), found + 1);
    return at;
}

std::deque<KeyClock::time_point> KeyPresses::stop() {
    m_thread.request_stop();
    m_thread.join();
    std::deque<KeyClock::time_point> left;
    for (const Press& press : m_open) {
        left.push_back(press.at);
    }
    return left;
}

} // namespace flashwriter::bench
