#include "tests/support/SerialRequests.h"

#include <dlfcn.h>
#include <linux/serial.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <ctime>
#include <mutex>

// See serial/platform for why the kernel's struct termios needs another name.
#define termios kernel_termios
#include <asm/termbits.h>
#undef termios

namespace flashwriter::testing {

namespace {

std::mutex mutex;
SerialRequests* current = nullptr;

int answer(SerialRequests& requests, unsigned long request, int result, void* argument) {
    std::int64_t value = 0;
    switch (request) {
    case TIOCMGET:
        *static_cast<std::int32_t*>(argument) = requests.modemLines;
        break;
    case TIOCMSET:
        value = *static_cast<std::int32_t*>(argument);
        break;
    case TIOCOUTQ:
        *static_cast<std::int32_t*>(argument) = requests.pendingOutput;
        requests.pendingOutput -= requests.pendingOutput > 0 ? requests.outputTaken : 0;
        break;
    case TIOCSERGETLSR:
        *static_cast<std::int32_t*>(argument) = requests.chipIsEmpty ? TIOCSER_TEMT : 0;
        break;
    case TIOCGSERIAL:
        static_cast<serial_struct*>(argument)->flags = requests.serialFlags;
        break;
    case TIOCSSERIAL:
        requests.serialFlagsRequested = static_cast<serial_struct*>(argument)->flags;
        break;
    default:
        break;
    }
    requests.made.emplace_back(request, value);
    errno = result == -1 ? EIO : errno;
    return result;
}

// The C library's own, behind the ones defined here.
void* nextDefinition(const char* name) {
    return ::dlsym(RTLD_NEXT, name);
}

// A terminal, but not the test's own end of a pseudo-terminal.
bool isPort(int descriptor) {
    int number = 0;
    return ::isatty(descriptor) == 1 && syscall(SYS_ioctl, descriptor, TIOCGPTN, &number) == -1;
}

bool isHeld(int descriptor) {
    const std::lock_guard guard(mutex);
    return current != nullptr && current->closesHeld && isPort(descriptor);
}

void overrideRate(const SerialRequests& requests, unsigned long request, void* argument) {
    if (request == TCSETS2 && requests.rateAfterChange != 0) {
        auto* const attributes = static_cast<termios2*>(argument);
        attributes->c_ispeed = requests.rateAfterChange;
        attributes->c_ospeed = requests.rateAfterChange;
    }
}

} // namespace

SerialRequests::SerialRequests() {
    const std::lock_guard guard(mutex);
    current = this;
}

SerialRequests::~SerialRequests() {
    const std::lock_guard guard(mutex);
    current = nullptr;
}

} // namespace flashwriter::testing

extern "C" int ioctl(int descriptor, unsigned long request, ...) {
    using namespace flashwriter::testing;
    std::va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    {
        const std::lock_guard guard(mutex);
        if (current != nullptr) {
            const auto planned = current->plan.find(request);
            if (planned != current->plan.end()) {
                return answer(*current, request, planned->second, argument);
            }
            overrideRate(*current, request, argument);
        }
    }
    return static_cast<int>(syscall(SYS_ioctl, descriptor, request, argument));
}

extern "C" int tcgetattr(int descriptor, termios* attributes) noexcept {
    using namespace flashwriter::testing;
    const std::lock_guard guard(mutex);
    if (current != nullptr && current->attributesReported) {
        *attributes = *current->attributesReported;
        return 0;
    }
    static auto* const real = reinterpret_cast<int (*)(int, termios*)>(nextDefinition("tcgetattr"));
    return real(descriptor, attributes);
}

extern "C" int tcsetattr(int descriptor, int actions, const termios* attributes) noexcept {
    using namespace flashwriter::testing;
    const std::lock_guard guard(mutex);
    if (current != nullptr && current->attributesReported) {
        current->attributesWritten = *attributes;
        return 0;
    }
    static auto* const real =
        reinterpret_cast<int (*)(int, int, const termios*)>(nextDefinition("tcsetattr"));
    return real(descriptor, actions, attributes);
}

extern "C" int tcflush(int descriptor, int queue) noexcept {
    using namespace flashwriter::testing;
    const std::lock_guard guard(mutex);
    const auto result = syscall(SYS_ioctl, descriptor, TCFLSH, queue);
    if (current != nullptr && queue == TCIOFLUSH) {
        ++current->discards;
    }
    return static_cast<int>(result);
}

extern "C" int close(int descriptor) {
    using namespace flashwriter::testing;
    constexpr timespec WHILE{.tv_sec = 0, .tv_nsec = 100'000'000};
    while (isHeld(descriptor) && ::nanosleep(&WHILE, nullptr) == 0) {
    }
    return static_cast<int>(syscall(SYS_close, descriptor));
}

extern "C" ssize_t write(int descriptor, const void* bytes, std::size_t count) {
    using namespace flashwriter::testing;
    if (count > 0 && isPort(descriptor)) {
        const std::lock_guard guard(mutex);
        if (current != nullptr && current->fullWrites > 0) {
            --current->fullWrites;
        } else if (current != nullptr && current->shortWrites > 0) {
            --current->shortWrites;
            --count;
        }
    }
    return syscall(SYS_write, descriptor, bytes, count);
}
