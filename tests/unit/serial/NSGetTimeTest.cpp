#include "serial/NSGetTime.h"

#include <gtest/gtest.h>

#include <chrono>

namespace flashwriter {
namespace {

std::uint64_t systemClock() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

TEST(NSGetTime, ReadsTheWallClockInWholeMilliseconds) {
    for (int i = 0; i < 1000; ++i) {
        const std::uint64_t before = systemClock();
        const std::uint64_t read = NSGetTime::getTimeOfDay_msec();
        const std::uint64_t after = systemClock();
        ASSERT_GE(read, before);
        ASSERT_LE(read, after);
    }
}

} // namespace
} // namespace flashwriter
