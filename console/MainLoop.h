#pragma once

#include "sequence/MainQueue.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

namespace flashwriter {

// The main thread's work during a write: tasks that other threads hand over, one after another in
// the order in which they came.
class MainLoop {
public:
    // What a driver takes. The loop must outlive it.
    MainQueue queue();

    // Hands a task to the loop. Any thread, before run() as well.
    void post(std::function<void()> task);

    // Runs tasks on the calling thread until end() has been called and none is left. A task may
    // post others. One that throws, as want of memory makes it, keeps none of the others from
    // being run.
    void run();

    // Any thread: nothing more is coming. Tasks that are waiting are still run.
    void end();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_tasks;
    bool m_isEnding = false;
};

} // namespace flashwriter
