#include "tests/support/ScriptedTarget.h"

#include "tests/support/Eventually.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <numeric>

namespace flashwriter::testing {

Bytes targetFrame(const Bytes& data) {
    const auto length = static_cast<std::uint8_t>(data.size());
    const auto sum = std::accumulate(data.begin(), data.end(), unsigned{length});
    Bytes frame;
    frame.reserve(data.size() + 4);
    frame.push_back(0x02);
    frame.push_back(length);
    for (const std::uint8_t byte : data) {
        frame.push_back(byte);
    }
    frame.push_back(static_cast<std::uint8_t>(0x100 - sum % 0x100));
    frame.push_back(0x03);
    return frame;
}

ScriptedTarget::ScriptedTarget() {
    m_terminal.makeRaw();
    m_thread = std::thread([this] { run(); });
}

ScriptedTarget::~ScriptedTarget() {
    m_stop = true;
    m_thread.join();
}

void ScriptedTarget::answer(const Answer& answer) {
    const std::lock_guard guard(m_mutex);
    m_answers.push_back(answer);
}

std::vector<Bytes> ScriptedTarget::frames() const {
    const std::lock_guard guard(m_mutex);
    return m_frames;
}

std::vector<Bytes> ScriptedTarget::frames(std::size_t count) const {
    eventually([&] { return frames().size() >= count; });
    return frames();
}

void ScriptedTarget::run() {
    std::array<std::uint8_t, 512> chunk{};
    while (!m_stop) {
        pollfd readable{m_terminal.master(), POLLIN, 0};
        if (::poll(&readable, 1, 5) != 1 || (readable.revents & POLLIN) == 0) {
            if ((readable.revents & POLLHUP) != 0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            continue;
        }
        const ssize_t size = ::read(m_terminal.master(), chunk.data(), chunk.size());
        for (ssize_t i = 0; i < size; ++i) {
            take(chunk.at(static_cast<std::size_t>(i)));
        }
    }
}

void ScriptedTarget::take(std::uint8_t byte) {
    m_partial.push_back(byte);
    const bool isFrame = m_partial[0] == 0x01 || m_partial[0] == 0x02;
    if (isFrame) {
        const std::size_t length = m_partial.size() < 2 ? 0 : m_partial[1];
        const std::size_t size = 4 + (length == 0 ? 256 : length);
        if (m_partial.size() < 2 || m_partial.size() < size) {
            return;
        }
    }
    {
        const std::lock_guard guard(m_mutex);
        m_frames.push_back(m_partial);
    }
    m_partial.clear();
    if (isFrame) {
        reply();
    }
}

void ScriptedTarget::reply() {
    Answer answer;
    {
        const std::lock_guard guard(m_mutex);
        if (m_answers.empty()) {
            return;
        }
        answer = m_answers.front();
        m_answers.pop_front();
    }
    std::this_thread::sleep_for(answer.delay);
    if (!answer.bytes.empty()) {
        m_terminal.send(answer.bytes);
    }
    if (!answer.more.empty()) {
        std::this_thread::sleep_for(answer.pause);
        m_terminal.send(answer.more);
    }
}

} // namespace flashwriter::testing
