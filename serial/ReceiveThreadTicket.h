#pragma once

#include <atomic>

namespace flashwriter {

// Decides once, between a receive thread that is about to start and a transport that is about to
// close, which of them comes first. Both hold it; the thread touches the transport only after a
// successful claim, so a thread that comes too late finds neither freed memory nor a descriptor
// that by then belongs to somebody else.
class ReceiveThreadTicket {
public:
    // The thread, before anything else: true if the transport is there and will wait for release().
    bool claim();
    // The thread, as the very last thing after a successful claim.
    void release();

    // The transport, when it closes: true if the thread had not begun and now never will.
    bool revoke();
    // After a revoke() that failed: whether the thread still uses the transport.
    bool inUse() const;

private:
    enum class State { pending, claimed, over };

    std::atomic<State> m_state{State::pending};
};

} // namespace flashwriter
