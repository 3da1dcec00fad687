#include "serial/platform/SerialDevice.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace flashwriter::platform {

namespace {

template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

// While output is pending the system holds up a close, and Linux the request for a BREAK: if the
// adapter takes no more bytes, the one for half a minute and the other without a limit. 0 as soon
// as none is pending any more; -1 and ETIMEDOUT when some stays.
int letOutputLeave(int descriptor) {
    constexpr auto PATIENCE = std::chrono::milliseconds(500);
    const auto start = std::chrono::steady_clock::now();
    while (isOutputPending(descriptor)) {
        if (std::chrono::steady_clock::now() - start > PATIENCE) {
            errno = ETIMEDOUT;
            return -1;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return 0;
}

} // namespace

int openDevice(const char* path) {
    const int descriptor =
        uninterrupted([path] { return ::open(path, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC); });
    if (descriptor == -1) {
        return -1;
    }
    struct stat status {};
    if (::fstat(descriptor, &status) == -1 || !S_ISCHR(status.st_mode)) {
        ::close(descriptor);
        errno = ENOTTY;
        return -1;
    }
    return descriptor;
}

void closeDevice(int descriptor) {
    if (letOutputLeave(descriptor) == 0) {
        // Never repeated: after an interruption the descriptor may already belong to somebody else.
        ::close(descriptor);
    } else {
        closeAtOnce(descriptor);
    }
}

ssize_t readDevice(int descriptor, std::uint8_t* bytes, std::size_t size) {
    return uninterrupted([=] { return ::read(descriptor, bytes, size); });
}

ssize_t writeDevice(int descriptor, const std::uint8_t* bytes, std::size_t count) {
    return uninterrupted([=] { return ::write(descriptor, bytes, count); });
}

void discardPending(int descriptor) {
    uninterrupted([=] { return ::tcflush(descriptor, TCIOFLUSH); });
}

void readAttributes(int descriptor, termios& attributes) {
    uninterrupted([&] { return ::tcgetattr(descriptor, &attributes); });
    startingAttributes(attributes);
}

void writeAttributes(int descriptor, const termios& attributes) {
    uninterrupted([&] { return ::tcsetattr(descriptor, TCSANOW, &attributes); });
}

int setBreak(int descriptor) {
    if (letOutputLeave(descriptor) == -1) {
        return -1;
    }
    return uninterrupted([=] { return ::ioctl(descriptor, TIOCSBRK, nullptr); });
}

int clearBreak(int descriptor) {
    return uninterrupted([=] { return ::ioctl(descriptor, TIOCCBRK, nullptr); });
}

int readModemLines(int descriptor, std::int32_t& lines) {
    return uninterrupted([&] { return ::ioctl(descriptor, TIOCMGET, &lines); });
}

int writeModemLines(int descriptor, std::int32_t lines) {
    return uninterrupted([&] { return ::ioctl(descriptor, TIOCMSET, &lines); });
}

} // namespace flashwriter::platform
