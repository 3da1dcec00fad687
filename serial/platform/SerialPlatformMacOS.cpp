// macOS: callout devices start without line discipline, and IOKit has a request of its own for any
// speed.
#include "serial/platform/SerialDevice.h"

#include <sys/ioctl.h>
#include <unistd.h>

#if __has_include(<IOKit/serial/ioss.h>)
#include <IOKit/serial/ioss.h>
#endif
#ifndef IOSSIOSPEED
#define IOSSIOSPEED _IOW('T', 2, speed_t)
#endif

namespace flashwriter::platform {

void startingAttributes(termios&) {}

int setLineSpeed(int descriptor, std::uint64_t bitsPerSecond) {
    auto rate = static_cast<speed_t>(bitsPerSecond);
    return ::ioctl(descriptor, IOSSIOSPEED, &rate);
}

void requestLowLatency(int) {}

bool isOutputPending(int descriptor) {
    int queued = 0;
    return ::ioctl(descriptor, TIOCOUTQ, &queued) == 0 && queued > 0;
}

// A close waits for nothing that has been discarded.
void closeAtOnce(int descriptor) {
    ::tcflush(descriptor, TCOFLUSH);
    ::close(descriptor);
}

} // namespace flashwriter::platform
