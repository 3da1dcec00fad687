#include "serial/platform/SerialDevice.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

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
