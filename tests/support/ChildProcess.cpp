#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

extern char** environ; // NOLINT(readability-redundant-declaration): not declared everywhere

namespace flashwriter::testing {

namespace {

// Everything that the child needs between fork and exec, where nothing may be allocated.
struct Start {
    std::vector<char*> arguments;
    std::vector<char*> environment;
    std::array<int, 3> descriptors{-1, -1, -1}; // -1: closed
    int terminal = -1;
};

std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (const std::string& text : texts) {
        result.push_back(const_cast<char*>(text.c_str())); // NOLINT: exec does not write to it
    }
    return result;
}

// A thread sanitizer lets a program's threads run on for a second after _exit, which no build that
// people use does. Other builds do not look at this variable.
std::string endingAtOnce() {
    const char* options = std::getenv("TSAN_OPTIONS"); // NOLINT(concurrency-mt-unsafe)
    return std::string("TSAN_OPTIONS=") + (options != nullptr ? options : "") +
           ":atexit_sleep_ms=0";
}

[[noreturn]] void become(const Start& start) {
    ::setsid();
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (start.terminal != -1) {
        ::ioctl(start.terminal, TIOCSCTTY, 0);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        std::signal(number, SIG_DFL);
    }
    for (int i = 0; i < 3; ++i) {
        const int from = start.descriptors.at(static_cast<std::size_t>(i));
        if (from == -1 ? ::close(i) == -1 && errno != EBADF : ::dup2(from, i) == -1) {
            ::_exit(126);
        }
    }
    ::execve(start.arguments.front(), start.arguments.data(), start.environment.data());
    ::_exit(127);
}

int openFile(const std::string& path) {
    const int descriptor =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
    if (descriptor == -1) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    return descriptor;
}

// Takes every byte of room that a pipe has; whoever writes to it then waits for a reader.
void fill(int descriptor) {
    ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
    for (std::size_t size = 4096; size != 0; size /= 2) {
        const std::string some(size, '\0');
        while (::write(descriptor, some.data(), size) > 0) {
        }
    }
    ::fcntl(descriptor, F_SETFL, 0);
}

void closeIfOpen(int& descriptor) {
    if (descriptor > 2) {
        ::close(descriptor);
    }
    descriptor = -1;
}

} // namespace

// The child's end of a stream, to be closed here after the start if it is a pipe's.
int ChildProcess::openEnd(ChildStream kind, Stream& stream, const Terminal* terminal) {
    if (kind == ChildStream::Closed) {
        return -1;
    }
    if (kind == ChildStream::Terminal) {
        return terminal->slave();
    }
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    stream.descriptor = ends[0];
    if (kind == ChildStream::FullPipe) {
        fill(ends[1]);
        stream.isUnread = true;
    }
    return ends[1];
}

ChildProcess::ChildProcess(const ChildOptions& options) {
    if (options.output == ChildStream::Terminal || options.error == ChildStream::Terminal) {
        m_terminal = std::make_unique<Terminal>(options.columns);
    }
    Start start;
    start.arguments = pointers(options.arguments);
    start.arguments.push_back(nullptr);
    const std::string tsanOptions = endingAtOnce();
    start.environment = pointers(options.environment); // the first of a name is the one that counts
    start.environment.push_back(const_cast<char*>(tsanOptions.c_str())); // NOLINT: as above
    for (char** variable = environ; *variable != nullptr; ++variable) {
        start.environment.push_back(*variable);
    }
    start.environment.push_back(nullptr);
    start.terminal = m_terminal ? m_terminal->slave() : -1;
    int input = -1;
    if (!options.closedInput) {
        input = m_terminal ? m_terminal->slave() : ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    }
    start.descriptors = {input, openEnd(options.output, m_output, m_terminal.get()),
                         options.errorFile.empty()
                             ? openEnd(options.error, m_error, m_terminal.get())
                             : openFile(options.errorFile)};
    m_pid = ::fork();
    if (m_pid == 0) {
        become(start);
    }
    for (int& descriptor : start.descriptors) {
        if (m_terminal == nullptr || descriptor != m_terminal->slave()) {
            closeIfOpen(descriptor);
        }
    }
    if (m_pid == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
}

ChildProcess::~ChildProcess() {
    if (!reap(false)) {
        ::kill(m_pid, SIGKILL);
        reap(true);
    }
    stopReadingOutput();
    stopReadingError();
}

bool ChildProcess::reap(bool block) {
    int status = 0;
    while (!m_status) {
        const pid_t ended = ::waitpid(m_pid, &status, block ? 0 : WNOHANG);
        if (ended == m_pid) {
            m_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        } else if (ended != -1 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

void ChildProcess::drain(int limitMilliseconds) {
    const auto read = [](const Stream& stream) { return stream.isUnread ? -1 : stream.descriptor; };
    std::array<pollfd, 3> ready{pollfd{read(m_output), POLLIN, 0}, pollfd{read(m_error), POLLIN, 0},
                                pollfd{m_terminal ? m_terminal->master() : -1, POLLIN, 0}};
    ::poll(ready.data(), ready.size(), limitMilliseconds);
    if (m_terminal) {
        m_terminalText += m_terminal->taken();
    }
    for (Stream* stream : {&m_output, &m_error}) {
        if (!stream->isUnread) {
            readInto(*stream);
        }
    }
}

void ChildProcess::readInto(Stream& stream) {
    std::array<char, 4096> chunk{};
    ssize_t size = -1;
    while (stream.descriptor != -1 &&
           (size = ::read(stream.descriptor, chunk.data(), chunk.size())) > 0) {
        stream.text.append(chunk.data(), static_cast<std::size_t>(size));
    }
    if (size == 0) { // the other end is closed: nothing to poll for any more
        closeIfOpen(stream.descriptor);
    }
}

void ChildProcess::readFullPipes() {
    for (Stream* stream : {&m_output, &m_error}) {
        if (stream->isUnread) {
            readInto(*stream);
            std::erase(stream->text, '\0');
            stream->isUnread = false;
        }
    }
}

bool ChildProcess::waitFor(const std::function<bool()>& condition, Milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        const bool hasEnded = reap(false);
        drain(hasEnded ? 0 : 10); // what was said last arrives after the end, too
        if (hasEnded || std::chrono::steady_clock::now() > end) {
            return condition();
        }
    }
    return true;
}

std::optional<int> ChildProcess::wait(Milliseconds limit) {
    waitFor([] { return false; }, limit);
    return m_status;
}

void ChildProcess::signal(int number) const {
    if (!m_status) {
        ::kill(m_pid, number);
    }
}

void ChildProcess::type(std::string_view keys) const {
    if (m_terminal && ::write(m_terminal->master(), keys.data(), keys.size()) !=
                          static_cast<ssize_t>(keys.size())) {
        throw std::system_error(errno, std::generic_category(), "typing");
    }
}

void ChildProcess::stopReadingOutput() {
    closeIfOpen(m_output.descriptor);
}

void ChildProcess::stopReadingError() {
    closeIfOpen(m_error.descriptor);
}

} // namespace flashwriter::testing
