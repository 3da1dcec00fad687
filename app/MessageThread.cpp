#include "app/MessageThread.h"

#include "sequence/context/Shelter.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <new>
#include <optional>
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

// How many messages were lost, and the one that came after them; none yet where there was none.
struct Piece {
    std::size_t lost = 0;
    std::optional<Message> message;
};

class Messages {
public:
    void setDestination(QtMessageHandler handler) { m_destination = handler; }
    QtMessageHandler destination() const { return m_destination; }

    // Without memory for it the message is not there, and not counted.
    void add(Message message) {
        const std::lock_guard lock(m_mutex);
        if (m_waiting.size() >= MOST_WAITING) {
            ++m_lost;
            return;
        }
        m_waiting.push_back({m_lost, std::move(message)});
        m_lost = 0;
        m_change.notify_all();
    }

    void countLost() {
        const std::lock_guard lock(m_mutex);
        ++m_lost;
        m_change.notify_all();
    }

    [[noreturn]] void bringAll() {
        std::size_t lost = 0;
        for (;;) {
            const Piece piece = next();
            lost += piece.lost;
            tellOfLost(lost);
            if (piece.message && !isBrought([&] { bring(*piece.message); })) {
                ++lost;
                tellOfLost(lost);
            }
        }
    }

    void waitUntilAllAreThere(std::chrono::milliseconds limit) {
        std::unique_lock lock(m_mutex);
        m_change.wait_for(lock, limit, [this] { return !isAnyWaiting() && !m_isBringing; });
    }

private:
    bool isAnyWaiting() const { return !m_waiting.empty() || m_lost != 0; }

    Piece next() {
        std::unique_lock lock(m_mutex);
        m_isBringing = false;
        m_change.notify_all();
        m_change.wait(lock, [this] { return isAnyWaiting(); });
        m_isBringing = true;
        if (m_waiting.empty()) {
            return {std::exchange(m_lost, 0), std::nullopt};
        }
        Piece piece = std::move(m_waiting.front());
        m_waiting.pop_front();
        return piece;
    }

    // Where there is no memory for that either the number is kept, for the next time.
    void tellOfLost(std::size_t& lost) const {
        const auto tell = [&] {
            bring(
                {QtWarningMsg, "flashwriter", QString("(messages that were lost: %1)").arg(lost)});
        };
        if (lost != 0 && isBrought(tell)) {
            lost = 0;
        }
    }

    // What it threw cannot be logged: that would be another message.
    template <class Action>
    static bool isBrought(const Action& action) {
        try {
            action();
            return true;
        } catch (const std::exception&) {
            return false;
        }
    }

    void bring(const Message& message) const {
        const QMessageLogContext context(nullptr, 0, nullptr, message.category.constData());
        m_destination(message.type, context, message.text);
    }

    std::mutex m_mutex;
    std::condition_variable m_change;
    std::deque<Piece> m_waiting;
    std::size_t m_lost = 0; // after all that are waiting
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
        messages.waitUntilAllAreThere(LAST_MOMENT);
        messages.destination()(type, context, text);
        return;
    }
    try {
        messages.add({type, context.category, text});
    } catch (const std::bad_alloc&) {
        messages.countLost();
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
