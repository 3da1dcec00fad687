#include "console/MainLoop.h"

#include "sequence/context/DiagnosticLog.h"

#include <exception>
#include <utility>

namespace flashwriter {

MainQueue MainLoop::queue() {
    return [this](std::function<void()> task) { post(std::move(task)); };
}

void MainLoop::post(std::function<void()> task) {
    const std::lock_guard lock(m_mutex);
    m_tasks.push_back(std::move(task));
    m_changed.notify_one();
}

void MainLoop::run() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_isEnding || !m_tasks.empty(); });
        if (m_tasks.empty()) {
            return;
        }
        const std::function<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        lock.unlock();
        try {
            task();
        } catch (const std::exception& error) {
            diagnosticLog("task: %s", error.what());
        }
        lock.lock();
    }
}

void MainLoop::end() {
    const std::lock_guard lock(m_mutex);
    m_isEnding = true;
    m_changed.notify_one();
}

} // namespace flashwriter
