// Linux: ports start in a terminal's attributes, any speed is set through termios2, short packets
// are held back unless asked for, and a BREAK and a close wait for what was sent before them.
#include "serial/platform/SerialDevice.h"

#include <linux/serial.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <limits>
#include <thread>

// The kernel's header is the only one that has termios2, and the C library's is the only one that
// has the functions; both define a struct termios, so the kernel's gets another name here.
#define termios kernel_termios
#include <asm/termbits.h>
#undef termios

namespace flashwriter::platform {

namespace {

// A driver rounds a rate to what its divisor can make and reports that; two percent is what the
// kernel itself counts as the same rate, and what a UART tolerates.
bool isRate(speed_t reported, speed_t wanted) {
    const auto difference = std::llabs(static_cast<long long>(reported) - wanted);
    return difference <= wanted / 50;
}

constexpr tcflag_t INPUT_RATE_BITS = static_cast<tcflag_t>(CBAUD) << IBSHIFT;

// No input rate of its own means that of the output.
void setRate(termios2& attributes, speed_t rate) {
    attributes.c_cflag &= ~(CBAUD | INPUT_RATE_BITS);
    attributes.c_cflag |= BOTHER;
    attributes.c_ispeed = rate;
    attributes.c_ospeed = rate;
}

constexpr auto LOOK_AGAIN = std::chrono::milliseconds(10);

// Nobody else here has a use for this signal, and by itself it does nothing to anybody. With a
// handler it ends what a thread waits for in the system.
void makeInterrupting(int signal) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigemptyset(&action.sa_mask);
    ::sigaction(signal, &action, nullptr);
}

// A new thread inherits the signals that its maker has blocked.
void letThrough(int signal) {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

} // namespace

// A Linux port at the kernel's defaults is set up for a person at a terminal: it waits for whole
// lines, echoes them back and turns carriage returns into line feeds. A port that somebody has
// already taken out of that state is left as it is. An input rate of its own, which an earlier use
// may have left, is cleared: the C library would not touch it, and setting both rates would set
// one.
void startingAttributes(::termios& attributes) {
    attributes.c_cflag &= ~INPUT_RATE_BITS;
    if ((attributes.c_lflag & ICANON) != 0) {
        ::cfmakeraw(&attributes);
    }
}

int setLineSpeed(int descriptor, std::uint64_t bitsPerSecond) {
    if (bitsPerSecond == 0 || bitsPerSecond > std::numeric_limits<speed_t>::max()) {
        errno = EINVAL;
        return -1;
    }
    const auto rate = static_cast<speed_t>(bitsPerSecond);
    termios2 attributes{};
    if (::ioctl(descriptor, TCGETS2, &attributes) == -1) {
        return -1;
    }
    setRate(attributes, rate);
    if (::ioctl(descriptor, TCSETS2, &attributes) == -1 ||
        ::ioctl(descriptor, TCGETS2, &attributes) == -1) {
        return -1;
    }
    if (!isRate(attributes.c_ispeed, rate) || !isRate(attributes.c_ospeed, rate)) {
        errno = EINVAL;
        return -1;
    }
    return 0;
}

void requestLowLatency(int descriptor) {
    serial_struct settings{};
    if (::ioctl(descriptor, TIOCGSERIAL, &settings) == -1) {
        return;
    }
    settings.flags |= ASYNC_LOW_LATENCY;
    ::ioctl(descriptor, TIOCSSERIAL, &settings);
}

// In the driver's queue, or in the chip behind it as far as the driver can tell. A port that knows
// neither question waits for nothing.
bool isOutputPending(int descriptor) {
    int queued = 0;
    int state = TIOCSER_TEMT;
    return (::ioctl(descriptor, TIOCOUTQ, &queued) == 0 && queued > 0) ||
           (::ioctl(descriptor, TIOCSERGETLSR, &state) == 0 && (state & TIOCSER_TEMT) == 0);
}

// Only a signal ends the system's wait in a close; what has not gone out is lost then, and the port
// is free. It is sent again and again: the wait may not have begun.
void closeAtOnce(int descriptor) {
    makeInterrupting(SIGURG);
    std::atomic<bool> isClosed{false};
    try {
        std::thread closing([descriptor, &isClosed] {
            letThrough(SIGURG);
            ::close(descriptor);
            isClosed = true;
        });
        while (!isClosed) {
            std::this_thread::sleep_for(LOOK_AGAIN);
            ::pthread_kill(closing.native_handle(), SIGURG);
        }
        closing.join();
    } catch (const std::exception&) { // no thread to be had
        ::close(descriptor);
    }
}

} // namespace flashwriter::platform
