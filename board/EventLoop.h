#pragma once

#include "board/Adapter.h"
#include "board/Descriptor.h"
#include "board/HostPort.h"
#include "board/LineServer.h"
#include "board/PortWatch.h"
#include "board/PseudoTerminal.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>

namespace flashwriter::board {

// Lets a board live on a pseudo-terminal, by the system's steady clock. One thread calls run();
// everything else may be called from any thread.
class EventLoop : private HostPort {
public:
    // The port is there when this returns. Throws as VirtualBoard::start() does.
    explicit EventLoop(const BoardOptions& options);

    // Returns after askToStop(), with the port gone.
    void run();
    void askToStop();

    const std::string& portPath() const { return m_path; }

    // Asks the board something while it stands still.
    template <typename Question>
    auto look(Question question) const {
        const std::lock_guard lock(m_mutex);
        return question(static_cast<const Adapter&>(m_adapter));
    }

    // Asks again whenever something may have changed, until the answer is true or the time is over.
    template <typename Question>
    bool waitUntil(Question question, std::chrono::milliseconds patience) const {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, patience,
                                  [&] { return question(static_cast<const Adapter&>(m_adapter)); });
    }

private:
    std::uint32_t bitsPerSecond() override;
    std::size_t send(std::span<const std::uint8_t> bytes) override;
    void unplug() override;
    void jam(std::size_t room) override;

    void step();
    void takePortChanges();
    void takeHostBytes();
    void removePort();
    void sleep();

    mutable std::mutex m_mutex; // held by the loop except while it sleeps
    mutable std::condition_variable m_changed;
    bool m_realTime;
    std::atomic<bool> m_stop{false};
    Descriptor m_wakeUp;
    PseudoTerminal m_terminal;
    std::string m_path;
    PortWatch m_watch;
    std::optional<LineServer> m_lines; // gone with the port
    bool m_unplugged = false;          // the port is to go at the end of this step
    std::size_t m_capacity = 0;        // of the pseudo-terminal, known only if a fault asks for it
    Adapter m_adapter;
};

} // namespace flashwriter::board
