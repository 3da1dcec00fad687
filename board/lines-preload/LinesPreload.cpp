// Stands between a program and the system's ioctl(). A pseudo-terminal carries bytes and a speed
// but no modem lines and no BREAK; requests for those go to the virtual board behind the port, if
// there is one, and every other request goes to the system as it came. Nothing is kept between two
// calls, so threads, forks and several boards need no care.

#include "board/lines-preload/LineMessage.h"

#include <cerrno>
#include <cstdarg>
#include <optional>

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

using flashwriter::board::LineAnswer;
using flashwriter::board::LineOperation;
using flashwriter::board::LineRequest;

// The device number that all ports of pseudo-terminals share.
constexpr unsigned kPseudoTerminalMajor = 136;

// A board answers at once; this is for one that was stopped in a debugger.
constexpr timeval kPatience{.tv_sec = 10, .tv_usec = 0};

std::optional<LineOperation> operationOf(unsigned long request) noexcept {
    switch (request) {
    case TIOCMGET:
        return LineOperation::get;
    case TIOCMSET:
        return LineOperation::set;
    case TIOCMBIS:
        return LineOperation::switchOn;
    case TIOCMBIC:
        return LineOperation::switchOff;
    case TIOCSBRK:
        return LineOperation::startBreak;
    case TIOCCBRK:
        return LineOperation::endBreak;
    default:
        return std::nullopt;
    }
}

// A connection to the board behind this descriptor, or -1 when there is none.
int connectToBoard(int fd) noexcept {
    struct stat status {};
    if (fstat(fd, &status) != 0 || !S_ISCHR(status.st_mode) ||
        major(status.st_rdev) != kPseudoTerminalMajor) {
        return -1;
    }
    const int connection = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (connection < 0) {
        return -1;
    }
    sockaddr_un address{};
    const socklen_t length =
        flashwriter::board::lineAddress(address, status.st_dev, minor(status.st_rdev));
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address), length) != 0) {
        close(connection);
        return -1;
    }
    static_cast<void>(
        setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience));
    return connection;
}

// Nothing when the board went away before it answered.
std::optional<LineAnswer> askBoard(int connection, const LineRequest& request) noexcept {
    LineAnswer answer;
    if (send(connection, &request, sizeof request, MSG_NOSIGNAL) != sizeof request) {
        return std::nullopt;
    }
    ssize_t got = 0;
    do {
        got = recv(connection, &answer, sizeof answer, 0);
    } while (got < 0 && errno == EINTR);
    if (got != sizeof answer) {
        return std::nullopt;
    }
    return answer;
}

// The board's answer, or nothing when the request is none of a board's business.
std::optional<LineAnswer> intercept(int fd, unsigned long request, const int* bits) noexcept {
    const auto operation = operationOf(request);
    if (!operation) {
        return std::nullopt;
    }
    const int connection = connectToBoard(fd);
    if (connection < 0) {
        return std::nullopt;
    }
    const bool carriesBits = *operation == LineOperation::set ||
                             *operation == LineOperation::switchOn ||
                             *operation == LineOperation::switchOff;
    const auto answer =
        askBoard(connection, {.operation = *operation,
                              .bits = carriesBits ? static_cast<std::uint32_t>(*bits) : 0});
    close(connection);
    return answer;
}

} // namespace

extern "C" __attribute__((visibility("default"))) int ioctl(int fd, unsigned long request,
                                                            ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);

    const int errnoBefore = errno;
    const auto answer = intercept(fd, request, static_cast<const int*>(argument));
    errno = errnoBefore;
    if (!answer) {
        // Straight to the system: a look-up of the next ioctl() would find a sanitizer's or none.
        return static_cast<int>(syscall(SYS_ioctl, fd, request, argument));
    }
    if (answer->error != 0) {
        errno = answer->error;
        return -1;
    }
    if (request == TIOCMGET) {
        *static_cast<int*>(argument) = static_cast<int>(answer->bits);
    }
    return 0;
}
