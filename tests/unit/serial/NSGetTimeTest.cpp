#include "serial/NSGetTime.h"

#include <gtest/gtest.h>

#include <sys/time.h>

#include <chrono>
#include <optional>

namespace {

std::optional<timeval> plannedTime; // instead of the clock's

} // namespace

// The program's reading of the wall clock goes through this one.
extern "C" int gettimeofday(timeval* now, void* /*zone*/) noexcept {
    if (plannedTime) {
        *now = *plannedTime;
        return 0;
    }
    timespec time{};
    const int result = clock_gettime(CLOCK_REALTIME, &time);
    *now = {time.tv_sec, time.tv_nsec / 1000};
    return result;
}

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

TEST(NSGetTime, CutsOffPartsOfAMillisecond) {
    plannedTime = timeval{1763700000, 999999};
    EXPECT_EQ(NSGetTime::getTimeOfDay_msec(), 1763700000999U);
    plannedTime = timeval{1763700000, 1999};
    EXPECT_EQ(NSGetTime::getTimeOfDay_msec(), 1763700000001U);
    plannedTime.reset();
}

TEST(NSGetTime, FollowsAClockThatIsSetBack) {
    plannedTime = timeval{1763700000, 0};
    const std::uint64_t later = NSGetTime::getTimeOfDay_msec();
    plannedTime = timeval{1763600000, 0};
    EXPECT_EQ(NSGetTime::getTimeOfDay_msec(), later - 100000000U);
    plannedTime.reset();
}

} // namespace
} // namespace flashwriter
