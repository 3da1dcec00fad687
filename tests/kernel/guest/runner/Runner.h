#pragma once

#include "tests/kernel/guest/channel/Message.h"
#include "tests/kernel/guest/runner/Child.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>

namespace flashwriter::kernel {

// The first process of the emulated machine: starts others as a test asks, and tells what they say
// and how they end. One thread.
class Runner {
public:
    // channel: open for reading and writing.
    explicit Runner(int channel);
    ~Runner();
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    // Until the test has gone. Throws std::system_error when the system refuses something.
    void run();

private:
    struct Running {
        std::unique_ptr<Child> child;
        std::chrono::steady_clock::time_point since; // its start, or the last signal sent to it
        std::chrono::milliseconds took{};            // from then to its end
        std::optional<int> status;                   // once it has ended
    };

    void wait();
    void takeRequests();
    void obey(const Message& request);
    void start(const Message& request);
    void takeOutput(std::uint32_t process, Running& running);
    bool forward(std::uint32_t process, int descriptor, MessageKind kind);
    void reap();
    void tellEnds();

    int m_channel;
    int m_childSignals;
    bool m_over = false;
    MessageReader m_reader;
    std::map<std::uint32_t, Running> m_running;
};

} // namespace flashwriter::kernel
