#include "tests/kernel/hands/CommandServer.h"

#include "tests/kernel/hands/Commands.h"
#include "tests/kernel/hands/LocalSocket.h"

#include <QAbstractEventDispatcher>
#include <QRegularExpression>
#include <QThread>

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <future>
#include <memory>
#include <system_error>
#include <thread>

namespace flashwriter::kernel {

namespace {

constexpr std::chrono::milliseconds LOOK{20}; // how often a text that is waited for is looked at

} // namespace

CommandServer::CommandServer(const std::string& path) {
    ::unlink(path.c_str());
    m_listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const LocalAddress address(path);
    if (::bind(m_listener, address.get(), address.size()) != 0 || ::listen(m_listener, 8) != 0) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    std::thread([this] { acceptAll(); }).detach();
}

void CommandServer::acceptAll() {
    for (;;) {
        const int connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection == -1 && errno != EINTR && errno != ECONNABORTED) {
            return;
        }
        if (connection != -1) {
            std::thread([this, connection] { serve(connection); }).detach();
        }
    }
}

void CommandServer::serve(int connection) {
    LineSocket lines(connection);
    while (const auto line = lines.read()) {
        if (!lines.write(lineOf(answerTo(wordsOf(*line))))) {
            return;
        }
    }
}

Words CommandServer::answerTo(const Words& command) {
    if (command.front() == "wait-text") {
        return waitText(command);
    }
    return command.front() == "alive" ? alive() : onWindows(command);
}

// The command after a click comes from the windows' thread's queue while the click's own event is
// still being handled; a loop that the click opens would sleep on it unless it is woken.
Words CommandServer::onWindows(const Words& command) {
    const auto answer = std::make_shared<std::promise<Words>>();
    std::future<Words> answered = answer->get_future();
    QMetaObject::invokeMethod(
        &m_windows,
        [this, answer, command] {
            const Outcome outcome = carryOut(command);
            answer->set_value(outcome.answer);
            if (outcome.action) {
                m_windows.thread()->eventDispatcher()->wakeUp();
                outcome.action();
            }
        },
        Qt::QueuedConnection);
    return answered.get();
}

Words CommandServer::waitText(const Words& command) {
    if (command.size() != 4) {
        return {REFUSED, "wait-text NAME PATTERN MS"};
    }
    const QRegularExpression pattern(QString::fromStdString(command[2]));
    const auto patience = std::chrono::milliseconds(std::strtoll(command[3].c_str(), nullptr, 10));
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        Words answer = onWindows({"text", command[1]});
        const bool isThere = answer.front() == DONE;
        if (isThere && pattern.match(QString::fromStdString(answer[1])).hasMatch()) {
            return answer;
        }
        if (std::chrono::steady_clock::now() > end) {
            return {REFUSED, answer[1]};
        }
        std::this_thread::sleep_for(LOOK);
    }
}

Words CommandServer::alive() {
    const auto asked = std::chrono::steady_clock::now();
    onWindows({"visible", ""});
    const auto took =
        std::chrono::ceil<std::chrono::milliseconds>(std::chrono::steady_clock::now() - asked);
    return {DONE, std::to_string(took.count())};
}

} // namespace flashwriter::kernel
