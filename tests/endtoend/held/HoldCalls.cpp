// Holds a program's calls on a pseudo-terminal up, as drivers do whose device does not take what
// was sent, or its looks at a file, as a disk does that has gone. Load it with LD_PRELOAD before
// lines-preload: the call that HELD_CALL names ("close", "break" or "flush", or "look" for those at
// the file HELD_FILE) returns only once there is no file HELD_WHILE, after half a minute at the
// latest.
#include <dlfcn.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

namespace {

constexpr unsigned PSEUDO_TERMINAL_MAJOR = 136;
constexpr int LOOKS = 3000;
constexpr useconds_t PAUSE = 10000; // microseconds

bool isPort(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISCHR(status.st_mode) &&
           major(status.st_rdev) == PSEUDO_TERMINAL_MAJOR;
}

bool isSet(const char* variable, const char* value) {
    const char* set = std::getenv(variable);
    return set != nullptr && value != nullptr && std::strcmp(set, value) == 0;
}

void hold() {
    const char* file = std::getenv("HELD_WHILE");
    for (int i = 0; i < LOOKS && file != nullptr && ::access(file, F_OK) == 0; ++i) {
        ::usleep(PAUSE);
    }
}

void hold(const char* call, int descriptor) {
    const int errnoBefore = errno;
    if (isSet("HELD_CALL", call) && isPort(descriptor)) {
        hold();
    }
    errno = errnoBefore;
}

void holdLook(const char* path) {
    if (isSet("HELD_CALL", "look") && isSet("HELD_FILE", path)) {
        hold();
    }
}

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) int close(int descriptor) {
    hold("close", descriptor);
    return next<int(int)>("close")(descriptor);
}

// What the toolkit looks at files with, and the standard library.
__attribute__((visibility("default"))) int statx(int directory, const char* path, int flags,
                                                 unsigned mask, struct statx* result) noexcept {
    holdLook(path);
    return next<int(int, const char*, int, unsigned, struct statx*)>("statx")(directory, path,
                                                                              flags, mask, result);
}

__attribute__((visibility("default"))) int stat(const char* path, struct stat* result) noexcept {
    holdLook(path);
    return next<int(const char*, struct stat*)>("stat")(path, result);
}

__attribute__((visibility("default"))) int tcflush(int descriptor, int queue) noexcept {
    hold("flush", descriptor);
    return next<int(int, int)>("tcflush")(descriptor, queue);
}

__attribute__((visibility("default"))) int ioctl(int descriptor, unsigned long request,
                                                 ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (request == TIOCSBRK) {
        hold("break", descriptor);
    }
    return next<int(int, unsigned long, ...)>("ioctl")(descriptor, request, argument);
}
}
