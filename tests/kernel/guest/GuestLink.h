#pragma once

#include "tests/kernel/guest/channel/Message.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <sys/types.h>
#include <thread>

namespace flashwriter::kernel {

// What is known here of a process in the emulated machine.
struct ProcessState {
    pid_t pid = 0; // in the machine; 0 until it is started
    std::string output;
    std::string error;
    std::optional<int> status; // once it has ended
    // By the machine's clock: from its start, or from the last signal sent to it, to its end.
    std::chrono::milliseconds took{};
};

// The conversation with the runner. A thread of its own takes what the runner says, so that no
// process in the machine ever waits for a reader. All operations may be called from any thread.
class GuestLink {
public:
    // Takes the connected descriptor and closes it at the end.
    explicit GuestLink(int descriptor);
    ~GuestLink();
    GuestLink(const GuestLink&) = delete;
    GuestLink& operator=(const GuestLink&) = delete;

    // A number for a new process.
    std::uint32_t newProcess();
    // Throws std::system_error when the machine has gone.
    void send(const Message& message);

    bool waitUntilReady(std::chrono::milliseconds limit);
    ProcessState state(std::uint32_t process) const;
    // Asks again whenever the process has done something; false when the time is over first, or the
    // machine has gone.
    bool waitFor(std::uint32_t process, const std::function<bool(const ProcessState&)>& condition,
                 std::chrono::milliseconds limit);

private:
    void read();
    void take(const Message& message);

    int m_descriptor;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isReady = false;
    bool m_isGone = false;
    std::uint32_t m_processes = 0;
    std::map<std::uint32_t, ProcessState> m_states;
    std::mutex m_sending;
    std::jthread m_reader;
};

} // namespace flashwriter::kernel
