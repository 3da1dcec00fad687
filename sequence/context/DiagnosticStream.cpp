#include "sequence/context/DiagnosticStream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>

namespace flashwriter {

namespace {

// A part of a call's output. What is written is only read, whatever its type says.
iovec part(std::string_view text) {
    return {const_cast<char*>(text.data()),
            text.size()}; // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

int openTerminalOf(int descriptor) {
    std::array<char, 256> path{};
    return ::ttyname_r(descriptor, path.data(), path.size()) == 0
               ? ::open(path.data(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)
               : -1;
}

} // namespace

bool takesAtOnce(int descriptor) {
    pollfd ready{descriptor, POLLOUT, 0};
    return ::poll(&ready, 1, 0) == 1 && (ready.revents & POLLOUT) != 0;
}

DiagnosticStream::~DiagnosticStream() {
    if (m_terminal != -1) {
        ::close(m_terminal);
        m_terminal = -1;
    }
}

void DiagnosticStream::writeLine(std::string_view line) {
    const std::lock_guard lock(m_mutex);
    bool isTaken = tellDropped();
    while (isTaken && line.size() >= PIPE_BUF) {
        isTaken = put(line.substr(0, PIPE_BUF), "");
        line.remove_prefix(PIPE_BUF);
    }
    if (!isTaken || !put(line, "\n")) {
        ++m_dropped;
    }
}

// A terminal says that it takes something when it takes a part of a line, and then waits for room
// for the rest. So it is written to through an opening of its own, which may be told not to wait.
int DiagnosticStream::target() {
    if (::isatty(m_descriptor) == 0) {
        return m_descriptor;
    }
    if (!m_wasTerminalOpened) {
        m_wasTerminalOpened = true;
        m_terminal = openTerminalOf(m_descriptor);
    }
    return m_terminal != -1 ? m_terminal : m_descriptor;
}

bool DiagnosticStream::tellDropped() {
    if (m_isLineOpen && !put("", "\n")) {
        return false;
    }
    if (m_dropped == 0) {
        return true;
    }
    std::array<char, 64> note{};
    const int length = std::snprintf(note.data(), note.size(),
                                     "(lines that could not be written: %lu)", m_dropped);
    if (!put({note.data(), static_cast<std::size_t>(length)}, "\n")) {
        return false;
    }
    m_dropped = 0;
    return true;
}

// Both together are at most PIPE_BUF bytes, which a pipe takes whole or not at all. True when the
// text is there; its end may still be missing then.
bool DiagnosticStream::put(std::string_view text, std::string_view end) {
    const int descriptor = target();
    if (!takesAtOnce(descriptor)) {
        return false;
    }
    const std::array<iovec, 2> parts{part(text), part(end)};
    ssize_t written = -1;
    do {
        written = ::writev(descriptor, parts.data(), static_cast<int>(parts.size()));
    } while (written == -1 && errno == EINTR);
    if (written <= 0) {
        return false;
    }
    const auto count = static_cast<std::size_t>(written);
    m_isLineOpen = end.empty() || count < text.size() + end.size();
    return count >= text.size();
}

} // namespace flashwriter
