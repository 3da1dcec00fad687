#include "serial/StandardStreams.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

namespace flashwriter {
namespace {

// What a process started without the descriptor makes of it: 0 when it is secured, and the next
// one that is opened gets a number behind the standard ones.
[[noreturn]] void startWithout(int descriptor) {
    ::close(descriptor);
    secureStandardStreams();
    const bool isOpen = ::fcntl(descriptor, F_GETFD) != -1;
    ::_exit(isOpen && ::open("/dev/null", O_RDWR) > STDERR_FILENO ? 0 : 1);
}

TEST(StandardStreams, AreNeverFreeForAPort) {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        EXPECT_EXIT(startWithout(descriptor), ::testing::ExitedWithCode(0), "") << descriptor;
    }
}

[[noreturn]] void writeToNobody() {
    std::signal(SIGPIPE, SIG_DFL); // whatever this process was started with
    secureStandardStreams();
    int ends[2]{};
    const bool isPipe = ::pipe(ends) == 0 && ::close(ends[0]) == 0;
    ::_exit(isPipe && ::write(ends[1], "x", 1) == -1 ? 0 : 1);
}

TEST(StandardStreams, MayLoseTheirReader) {
    EXPECT_EXIT(writeToNobody(), ::testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace flashwriter
