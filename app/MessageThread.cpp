#include "app/MessageThread.h"

#include "sequence/context/Shelter.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

namespace flashwriter {

namespace {

constexpr std::size_t MOST_WAITING = 20000;
constexpr std::chrono::milliseconds LAST_MOMENT{500};

struct Message {
    QtMsgType type = QtInfoMsg;
    QByteArray category;
    QString text;
};

class Messages {
public:
    void setDestination(QtMessageHandler handler) { m_destination = handler; }
    QtMessageHandler destination() const { return m_destination; }

    void add(Message message) {
        const std::lock_guard lock(m_mutex);
        if (m_waiting.size() >= MOST_WAITING) {
            ++m_lost;
            return;
        }
        m_waiting.push_back(std::move(message));
        m_change.notify_all();
    }

    [[noreturn]] void bringAll() {
        for (;;) {
            bring(next());
        }
    }

    void waitUntilAllAreThere(std::chrono::milliseconds limit) {
        std::unique_lock lock(m_mutex);
        m_change.wait_for(lock, limit, [this] { return m_waiting.empty() && !m_isBringing; });
    }

private:
    Message next() {
        std::unique_lock lock(m_mutex);
        m_isBringing = false;
        m_change.notify_all();
        m_change.wait(lock, [this] { return !m_waiting.empty(); });
        m_isBringing = true;
        if (m_lost != 0) {
            return {QtWarningMsg, "flashwriter",
                    QString("(messages that were lost: %1)").arg(std::exchange(m_lost, 0))};
        }
        Message message = std::move(m_waiting.front());
        m_waiting.pop_front();
        return message;
    }

    void bring(const Message& message) const {
        const QMessageLogContext context(nullptr, 0, nullptr, message.category.constData());
        m_destination(message.type, context, message.text);
    }

    std::mutex m_mutex;
    std::condition_variable m_change;
    std::deque<Message> m_waiting;
    std::size_t m_lost = 0;
    bool m_isBringing = false;
    QtMessageHandler m_destination = nullptr; // set before there is a message
};

// As long as the process: its thread may be held up at the end.
Messages& allMessages() {
    static auto* const messages = new Messages;
    return *messages;
}

void takeMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    Messages& messages = allMessages();
    if (type == QtFatalMsg) {
        messages.destination()(type, context, text);
        return;
    }
    try {
        messages.add({type, context.category, text});
    } catch (const std::bad_alloc&) {
        return; // there is nobody to tell
    }
}

} // namespace

MessageThread::MessageThread() {
    Messages& messages = allMessages();
    m_isInstalled =
        sheltered("messages", [&] { std::thread([&] { messages.bringAll(); }).detach(); });
    if (m_isInstalled) {
        messages.setDestination(qInstallMessageHandler(nullptr)); // which gives it back
        qInstallMessageHandler(takeMessage);
    }
}

MessageThread::~MessageThread() {
    if (m_isInstalled) {
        allMessages().waitUntilAllAreThere(LAST_MOMENT);
        qInstallMessageHandler(allMessages().destination());
    }
}

} // namespace flashwriter
