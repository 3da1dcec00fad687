#pragma once

namespace flashwriter {

// Brings the messages of Qt's logging to where they go, on a thread of its own: whoever reads them
// may be slow or stopped, and neither the window nor a write waits for that. What comes while
// very many are waiting is lost, as is what there is no memory for; in its place it is said how
// many were. A message that ends the program is brought there by who has it, a moment after those
// that are waiting.
//
// One at a time, on the main thread; without a thread messages take the way that they had before.
class MessageThread {
public:
    MessageThread();
    // Gives messages that are waiting a moment, and messages back to how they went before.
    ~MessageThread();
    MessageThread(const MessageThread&) = delete;
    MessageThread& operator=(const MessageThread&) = delete;

private:
    bool m_isInstalled = false;
};

} // namespace flashwriter
