#pragma once

#include <QString>
#include <QtGlobal>

#include <condition_variable>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

namespace flashwriter::testing {

struct TakenMessage {
    QtMsgType type = QtInfoMsg;
    QString category;
    QString text;
    std::thread::id thread;
};

// Takes the messages while it lives, one at a time, and none while it is held. One at a time.
class MessageReader {
public:
    MessageReader() {
        s_this = this;
        m_before = qInstallMessageHandler(
            [](QtMsgType type, const QMessageLogContext& context, const QString& text) {
                s_this->take({type, context.category, text, std::this_thread::get_id()});
            });
    }
    ~MessageReader() {
        hold(false);
        qInstallMessageHandler(m_before);
    }
    MessageReader(const MessageReader&) = delete;
    MessageReader& operator=(const MessageReader&) = delete;

    void hold(bool held) {
        const std::lock_guard lock(m_mutex);
        m_isHeld = held;
        m_change.notify_all();
    }
    void fail(int times) { // so often it has no memory for a message
        const std::lock_guard lock(m_mutex);
        m_failures = times;
    }
    bool isWaitedFor() { // somebody wants to give it a message
        const std::lock_guard lock(m_mutex);
        return m_isWaitedFor;
    }
    std::vector<TakenMessage> all() {
        const std::lock_guard lock(m_mutex);
        return m_taken;
    }
    std::size_t count() {
        const std::lock_guard lock(m_mutex);
        return m_taken.size();
    }

private:
    void take(const TakenMessage& message) {
        std::unique_lock lock(m_mutex);
        m_isWaitedFor = true;
        m_change.wait(lock, [this] { return !m_isHeld; });
        m_isWaitedFor = false;
        if (m_failures > 0) {
            --m_failures;
            throw std::bad_alloc();
        }
        m_taken.push_back(message);
    }

    inline static MessageReader* s_this = nullptr;
    QtMessageHandler m_before = nullptr;
    std::mutex m_mutex;
    std::condition_variable m_change;
    std::vector<TakenMessage> m_taken;
    int m_failures = 0;
    bool m_isHeld = false;
    bool m_isWaitedFor = false;
};

} // namespace flashwriter::testing
