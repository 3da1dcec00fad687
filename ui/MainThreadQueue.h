#pragma once

#include "sequence/MainQueue.h"

#include <functional>
#include <memory>

namespace flashwriter {

// The main thread's event loop as a queue of tasks: what other threads hand over runs there, one
// task after another in the order in which they came. A task that opens a modal window holds up
// nothing: those behind it run in that window's loop. What a task throws ends in the diagnostic
// log.
//
// Made and destroyed on the main thread. Tasks that have not run by then are dropped, and so are
// those that come later: a queue() may outlive this object.
class MainThreadQueue {
public:
    MainThreadQueue();
    ~MainThreadQueue();
    MainThreadQueue(const MainThreadQueue&) = delete;
    MainThreadQueue& operator=(const MainThreadQueue&) = delete;

    // What a driver takes. Any thread may call it. Where memory has run out it waits for some, for
    // half a second at the most, and then throws std::bad_alloc.
    MainQueue queue() const;

    // Any thread: runs the task before it returns when that is the main thread, queues it
    // otherwise.
    void run(std::function<void()> task) const;

private:
    class Receiver;
    struct Tasks;
    std::shared_ptr<Tasks> m_tasks;
    std::unique_ptr<Receiver> m_receiver;
};

} // namespace flashwriter
