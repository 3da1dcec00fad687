// Lets a disk fail in the middle of a regular file. Load it with LD_PRELOAD: a read at an offset
// gives no more than READ_PIECE bytes, and fails with EIO when it is the FAILING_READ-th, counted
// from 1, or when DISK_STAYS_BROKEN is set and it comes later.
#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>

namespace {

std::atomic<long> reads{0};

long numberIn(const char* name) {
    const char* text = std::getenv(name);
    return text != nullptr ? std::strtol(text, nullptr, 10) : 0;
}

bool isRegular(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

extern "C" __attribute__((visibility("default"))) ssize_t pread(int descriptor, void* buffer,
                                                                std::size_t size, off_t offset) {
    using Pread = ssize_t (*)(int, void*, std::size_t, off_t);
    static const auto next = reinterpret_cast<Pread>(::dlsym(RTLD_NEXT, "pread"));
    if (!isRegular(descriptor)) {
        return next(descriptor, buffer, size, offset);
    }
    const long number = ++reads;
    const long failing = numberIn("FAILING_READ");
    if (number == failing || (number > failing && std::getenv("DISK_STAYS_BROKEN") != nullptr)) {
        errno = EIO;
        return -1;
    }
    const auto piece = static_cast<std::size_t>(numberIn("READ_PIECE"));
    return next(descriptor, buffer, std::min(size, piece), offset);
}
