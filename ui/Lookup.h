#pragma once

#include "ui/MainThreadQueue.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace flashwriter {

// Questions whose answer may take long or never come: about a file on a disk that has gone, or a
// user in a directory that does not respond. Nobody waits for them longer than they want to.
class Lookup {
public:
    // Asked on a thread of its own, and asked again when there was no memory.
    using Question = std::function<std::string()>;
    using Answer = std::function<void(const std::string&)>; // given on the main thread

    // The queue is borrowed.
    explicit Lookup(const MainThreadQueue& mainThread);
    // Answers that are still on their way are dropped.
    ~Lookup();
    Lookup(const Lookup&) = delete;
    Lookup& operator=(const Lookup&) = delete;

    // Asks, waits for the answer for `patience` at the most, and returns. An answer that has come
    // by then is given before anything that the caller hands to the main thread later; on the main
    // thread, before it returns. One that comes afterwards is given when it comes, unless another
    // question has been asked or forget() been called by then. False where nothing could be asked:
    // there was no thread or no memory, or too many questions are still unanswered. One thread at a
    // time.
    bool ask(Question question, Answer answer,
             std::chrono::milliseconds patience = std::chrono::milliseconds(0));

    // Whether there is still to be an answer to the last question. There is none any more, though
    // nobody has been told, when the thread that asked has failed for want of memory.
    bool isWaiting() const;

    // The last question needs no answer any more.
    void forget();

private:
    struct Inquiry;
    static bool waitFor(Inquiry& inquiry, std::chrono::milliseconds patience);

    const MainThreadQueue& m_mainThread;
    std::shared_ptr<Inquiry> m_last;
    std::shared_ptr<int> m_unanswered; // only its users count: one for each thread
};

} // namespace flashwriter
