// Preloaded into a program, does as the environment's PORT_CALLS says to its requests on ports:
//   die-in-break         the process is killed as soon as BREAK holds the line
//   refuse-low-latency   the request for low latency is refused, as other drivers do
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <string_view>

namespace {

bool isAskedFor(std::string_view what) {
    const char* const value = std::getenv("PORT_CALLS"); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr && what == value;
}

} // namespace

// NOLINTNEXTLINE(cert-dcl50-cpp): it takes the place of the C library's
extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept {
    va_list rest;
    va_start(rest, request);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    if (request == TIOCSSERIAL && isAskedFor("refuse-low-latency")) {
        errno = EPERM;
        return -1;
    }
    const auto result = static_cast<int>(::syscall(SYS_ioctl, descriptor, request, argument));
    if (request == TIOCSBRK && result == 0 && isAskedFor("die-in-break")) {
        ::kill(::getpid(), SIGKILL);
    }
    return result;
}
