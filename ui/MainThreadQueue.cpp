#include "ui/MainThreadQueue.h"

#include "sequence/context/Shelter.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>

#include <deque>
#include <mutex>
#include <utility>

namespace flashwriter {

// The tasks wait here and not in the events that announce them, so that the lock is all that
// carries them from one thread to another. There is an event for each task, and there may be more:
// memory may run out between the two.
struct MainThreadQueue::Tasks {
    void post(std::function<void()> task) {
        whenThereIsMemory([&] {
            const std::lock_guard lock(mutex);
            if (receiver != nullptr) {
                QCoreApplication::postEvent(receiver, new QEvent(QEvent::User));
                waiting.push_back(std::move(task));
            }
        });
    }

    std::function<void()> take() { // none when an event was one too many
        const std::lock_guard lock(mutex);
        if (waiting.empty()) {
            return nullptr;
        }
        auto task = std::move(waiting.front());
        waiting.pop_front();
        return task;
    }

    std::mutex mutex;
    std::deque<std::function<void()>> waiting;
    QObject* receiver = nullptr; // null once the queue is gone
};

// The events are not looked at.
class MainThreadQueue::Receiver final : public QObject {
public:
    explicit Receiver(std::shared_ptr<Tasks> tasks) : m_tasks(std::move(tasks)) {}

    void customEvent(QEvent* /*event*/) override {
        const auto task = m_tasks->take();
        // Should the task open a loop, that one would sleep on events that are there already.
        thread()->eventDispatcher()->wakeUp();
        if (task) {
            sheltered("task", task);
        }
    }

private:
    std::shared_ptr<Tasks> m_tasks;
};

MainThreadQueue::MainThreadQueue()
    : m_tasks(std::make_shared<Tasks>()), m_receiver(std::make_unique<Receiver>(m_tasks)) {
    m_tasks->receiver = m_receiver.get();
}

MainThreadQueue::~MainThreadQueue() {
    std::deque<std::function<void()>> dropped; // declared first, destroyed without the lock
    const std::lock_guard lock(m_tasks->mutex);
    m_tasks->receiver = nullptr;
    dropped.swap(m_tasks->waiting);
}

MainQueue MainThreadQueue::queue() const {
    return [tasks = m_tasks](std::function<void()> task) { tasks->post(std::move(task)); };
}

void MainThreadQueue::run(std::function<void()> task) const {
    if (QThread::currentThread() == m_receiver->thread()) {
        task();
    } else {
        m_tasks->post(std::move(task));
    }
}

} // namespace flashwriter
