#include "console/ConsoleOutput.h"

#include "console/ProgressBar.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace flashwriter {

namespace {

bool isSameDevice(int one, int other) {
    struct stat first {};
    struct stat second {};
    return ::fstat(one, &first) == 0 && ::fstat(other, &second) == 0 &&
           first.st_rdev == second.st_rdev;
}

} // namespace

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == -1 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            pollfd ready{descriptor, POLLOUT, 0};
            ::poll(&ready, 1, -1);
        } else if (written == 0 || errno != EINTR) {
            return;
        }
    }
}

ConsoleOutput::ConsoleOutput(int output, int error)
    : m_output(output), m_error(error), m_showsProgress(::isatty(error) != 0),
      m_isShared(m_showsProgress && ::isatty(output) != 0 && isSameDevice(output, error)) {}

std::size_t ConsoleOutput::columns() const {
    constexpr std::size_t USUAL = 80;
    winsize window{};
    const bool isKnown = ::ioctl(m_error, TIOCGWINSZ, &window) == 0 && window.ws_col != 0;
    // The last column stays free: a character there makes some terminals begin a new line.
    return (isKnown ? window.ws_col : USUAL) - 1;
}

void ConsoleOutput::write(std::string_view text) {
    writeAll(m_error, erasing());
    writeAll(m_output, text);
    const std::size_t lineBreak = text.rfind('\n');
    if (lineBreak != std::string_view::npos) {
        m_openLine.clear();
        text.remove_prefix(lineBreak + 1);
    }
    m_openLine += text;
    writeAll(m_error, drawing());
}

void ConsoleOutput::writeLines(std::string_view text) {
    if (!m_openLine.empty()) {
        write("\n");
    }
    write(text);
    if (!text.ends_with('\n')) {
        write("\n");
    }
}

void ConsoleOutput::showProgress(std::int32_t step, std::int32_t percentage) {
    if (!m_showsProgress || (m_isVisible && m_step == step && m_percentage == percentage)) {
        return;
    }
    m_step = step;
    m_percentage = percentage;
    m_isVisible = true;
    std::string change = erasing();
    change += drawing();
    writeAll(m_error, change); // at once, or it would flicker
}

void ConsoleOutput::hideProgress() {
    m_isVisible = false;
    writeAll(m_error, erasing());
}

std::string ConsoleOutput::drawing() {
    if (!m_isVisible) {
        return "";
    }
    const std::string gap = m_isShared && !m_openLine.empty() ? " " : "";
    const std::size_t taken = m_isShared ? m_openLine.size() + gap.size() : 0;
    const std::size_t room = columns();
    const std::string shown = taken < room ? progressBar(m_step, m_percentage, room - taken) : "";
    if (shown.empty()) {
        return "";
    }
    m_drawn = gap.size() + shown.size();
    return gap + shown;
}

// Blanks over the progress, and the cursor back to where the log goes on.
std::string ConsoleOutput::erasing() {
    if (m_drawn == 0) {
        return "";
    }
    const std::string before = m_isShared ? m_openLine : "";
    const std::string blanks(m_drawn, ' ');
    m_drawn = 0;
    return "\r" + before + blanks + "\r" + before;
}

} // namespace flashwriter
