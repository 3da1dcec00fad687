#pragma once

#include "board/Adapter.h"
#include "board/Descriptor.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <vector>

#include <poll.h>

namespace flashwriter::board {

// The system's steady clock, by which boards live.
BoardTime clockNow();

// Lets a board live: one thread calls run(), which steps whenever something has come in or is due,
// and sleeps otherwise. Everything else may be called from any thread.
class BoardLoop {
public:
    BoardLoop(const BoardLoop&) = delete;
    BoardLoop& operator=(const BoardLoop&) = delete;
    virtual ~BoardLoop() = default;

    // Returns after askToStop(), with the host's side gone.
    void run();
    void askToStop();

    // Asks something while the board stands still.
    template <typename Question>
    auto look(Question question) const {
        const std::lock_guard lock(m_mutex);
        return question();
    }

    // Asks again whenever something may have changed, until the answer is true or the time is over.
    template <typename Question>
    bool waitUntil(Question question, std::chrono::milliseconds patience) const {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, patience, question);
    }

    // Only to be looked at in a question.
    virtual const Adapter& adapter() const = 0;

protected:
    // Throws std::system_error when the system has no descriptor to give.
    explicit BoardLoop(bool realTime);

    // These are called on the thread of run(): step() and leave() while nobody looks.
    virtual void step() = 0;
    virtual void leave() = 0; // takes the host's side away
    virtual void addTo(std::vector<pollfd>& entries) const = 0;
    virtual std::optional<BoardTime> nextDeadline() const = 0;

private:
    void sleep();

    mutable std::mutex m_mutex; // held by the loop except while it sleeps
    mutable std::condition_variable m_changed;
    bool m_realTime;
    std::atomic<bool> m_stop{false};
    Descriptor m_wakeUp;
};

} // namespace flashwriter::board
