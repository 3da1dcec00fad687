#include "tests/kernel/guest/runner/Runner.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string>
#include <system_error>
#include <vector>

namespace flashwriter::kernel {

namespace {

constexpr std::size_t CHUNK = 16384;

int openChildSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGCHLD);
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN); // NOLINT(cert-err33-c): a process may not read its input
    const int descriptor = ::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    if (descriptor == -1) {
        throw std::system_error(errno, std::generic_category(), "signalfd");
    }
    return descriptor;
}

} // namespace

Runner::Runner(int channel) : m_channel(channel), m_childSignals(openChildSignals()) {
    sendMessage(m_channel, {.kind = MessageKind::ready, .process = 0, .body = ""});
}

Runner::~Runner() {
    ::close(m_childSignals);
}

void Runner::run() {
    while (!m_over) {
        wait();
        takeRequests();
        for (auto& [process, running] : m_running) {
            takeOutput(process, running);
        }
        reap();
        tellEnds();
    }
}

void Runner::wait() {
    std::vector<pollfd> polled{{m_channel, POLLIN, 0}, {m_childSignals, POLLIN, 0}};
    for (const auto& [process, running] : m_running) {
        polled.push_back({running.child->output(), POLLIN, 0});
        polled.push_back({running.child->error(), POLLIN, 0});
    }
    ::poll(polled.data(), polled.size(), -1);
}

void Runner::takeRequests() {
    pollfd ready{m_channel, POLLIN, 0};
    if (::poll(&ready, 1, 0) != 1) {
        return;
    }
    std::array<char, CHUNK> chunk{};
    const ssize_t size = ::read(m_channel, chunk.data(), chunk.size());
    m_over = size <= 0;
    if (size > 0) {
        m_reader.add({chunk.data(), static_cast<std::size_t>(size)});
    }
    while (const auto request = m_reader.take()) {
        obey(*request);
    }
}

void Runner::obey(const Message& request) {
    if (request.kind == MessageKind::start) {
        start(request);
        return;
    }
    const auto found = m_running.find(request.process);
    if (found == m_running.end()) {
        return; // it has ended meanwhile
    }
    if (request.kind == MessageKind::input) {
        found->second.child->input(request.body);
    } else if (request.kind == MessageKind::signal && !found->second.status) {
        found->second.since = std::chrono::steady_clock::now();
        ::kill(found->second.child->pid(), std::stoi(request.body));
    }
}

void Runner::start(const Message& request) {
    Running running{.child = std::make_unique<Child>(decodeCommand(request.body)),
                    .since = std::chrono::steady_clock::now(),
                    .took = {},
                    .status = {}};
    sendMessage(m_channel, {.kind = MessageKind::started,
                            .process = request.process,
                            .body = std::to_string(running.child->pid())});
    m_running[request.process] = std::move(running);
}

void Runner::takeOutput(std::uint32_t process, Running& running) {
    if (!forward(process, running.child->output(), MessageKind::output)) {
        running.child->closeOutput();
    }
    if (!forward(process, running.child->error(), MessageKind::error)) {
        running.child->closeError();
    }
}

// False when the stream has ended.
bool Runner::forward(std::uint32_t process, int descriptor, MessageKind kind) {
    pollfd ready{descriptor, POLLIN, 0};
    std::array<char, CHUNK> chunk{};
    while (descriptor != -1 && ::poll(&ready, 1, 0) == 1) {
        const ssize_t size = ::read(descriptor, chunk.data(), chunk.size());
        if (size <= 0) {
            return false;
        }
        sendMessage(m_channel, {.kind = kind,
                                .process = process,
                                .body = std::string(chunk.data(), static_cast<std::size_t>(size))});
    }
    return true;
}

// Orphans too: they are the first process's to bury.
void Runner::reap() {
    signalfd_siginfo signal{};
    while (::read(m_childSignals, &signal, sizeof signal) > 0) {
    }
    int status = 0;
    for (pid_t ended = ::waitpid(-1, &status, WNOHANG); ended > 0;
         ended = ::waitpid(-1, &status, WNOHANG)) {
        for (auto& [process, running] : m_running) {
            if (running.child->pid() == ended) {
                running.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
                running.took = std::chrono::duration_cast<std::chrono::milliseconds>(
                    std::chrono::steady_clock::now() - running.since);
            }
        }
    }
}

void Runner::tellEnds() {
    for (auto entry = m_running.begin(); entry != m_running.end();) {
        auto& [process, running] = *entry;
        if (!running.status) {
            ++entry;
            continue;
        }
        takeOutput(process, running); // what it said last
        sendMessage(m_channel, {.kind = MessageKind::ended,
                                .process = process,
                                .body = std::to_string(*running.status) + " " +
                                        std::to_string(running.took.count())});
        entry = m_running.erase(entry);
    }
}

} // namespace flashwriter::kernel
