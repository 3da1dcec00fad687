#include "serial/NSGetTime.h"

#include <sys/time.h>

namespace flashwriter {

std::uint64_t NSGetTime::getTimeOfDay_msec() {
    timeval now{};
    gettimeofday(&now, nullptr);
    const double milliseconds =
        static_cast<double>(now.tv_usec) / 1000.0 + static_cast<double>(now.tv_sec) * 1000.0;
    return static_cast<std::uint64_t>(milliseconds);
}

} // namespace flashwriter
