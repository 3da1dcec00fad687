#pragma once

#include "tests/kernel/guest/GuestLink.h"
#include "tests/kernel/guest/channel/Command.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>

namespace flashwriter::kernel {

// A process in the emulated machine; it is killed when the object ends, and has ended then.
class GuestProcess {
public:
    using Milliseconds = std::chrono::milliseconds;
    static constexpr Milliseconds PATIENCE{60000};

    // The link has to outlive it. Throws std::system_error when the machine has gone.
    GuestProcess(GuestLink& link, const Command& command);
    ~GuestProcess();
    GuestProcess(const GuestProcess&) = delete;
    GuestProcess& operator=(const GuestProcess&) = delete;

    pid_t pid();
    std::string output() const { return m_link.state(m_process).output; }
    std::string error() const { return m_link.state(m_process).error; }
    // Once it has ended: how long that took from its start, or from the last signal sent to it.
    Milliseconds took() const { return m_link.state(m_process).took; }

    // Waits until condition holds, asking whenever the process has said something or ended.
    bool waitFor(const std::function<bool(const ProcessState&)>& condition,
                 Milliseconds limit = PATIENCE);
    // The exit status, 128 + n after death by signal n, nothing when the time is over first.
    std::optional<int> wait(Milliseconds limit = PATIENCE);

    void signal(int number);
    void input(const std::string& bytes); // none ends its standard input

private:
    GuestLink& m_link;
    std::uint32_t m_process;
};

} // namespace flashwriter::kernel
