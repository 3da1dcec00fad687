#include "tests/endtoend/console/Flashwrite.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <string>

namespace flashwriter::testing {
namespace {

using ::testing::HasSubstr;

const char* const UNTOUCHED =
    "Interrupted before anything was written: the board's contents are as they were.\n";

// The program is in the middle of asking a board that never answers.
bool isAsking(ChildProcess& program) {
    return program.waitFor(
        [&] { return (program.output() + program.terminal()).find("## P") != std::string::npos; });
}

TEST(FlashwriteInterrupt, EndsWithTheSignalsStatusAndSaysWhatIsTrue) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        const SilentPort port;
        ChildProcess program(flashwrite({port.path(), "115200", "image.bin"}));
        ASSERT_TRUE(isAsking(program));
        const auto before = std::chrono::steady_clock::now();
        program.signal(number);
        EXPECT_EQ(program.wait(), 128 + number);
        EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(2));
        EXPECT_TRUE(program.error().ends_with(UNTOUCHED)) << program.error();
        EXPECT_EQ(program.output(), "## Programming Mode\n");
    }
}

TEST(FlashwriteInterrupt, CtrlCAtATerminalBeginsAFreshLine) {
    const SilentPort port;
    ChildOptions options = flashwrite({port.path(), "115200", "image.bin"});
    options.output = ChildStream::Terminal;
    options.error = ChildStream::Terminal;
    ChildProcess program(options);
    ASSERT_TRUE(isAsking(program));
    program.type("\x03");
    EXPECT_EQ(program.wait(), 130);
    EXPECT_TRUE(program.terminal().ends_with(std::string("\n") + UNTOUCHED)) << program.terminal();
}

TEST(FlashwriteInterrupt, WaitsForNoReader) {
    const SilentPort port;
    ChildOptions options = flashwrite({port.path(), "115200", "image.bin"});
    options.error = ChildStream::FullPipe;
    ChildProcess program(options);
    ASSERT_TRUE(isAsking(program));
    program.signal(SIGTERM);
    EXPECT_EQ(program.wait(), 128 + SIGTERM);
}

TEST(FlashwriteInterrupt, LeavesThePortToTheNext) {
    const SilentPort port;
    ChildProcess interrupted(flashwrite({port.path(), "115200", "image.bin"}));
    ASSERT_TRUE(isAsking(interrupted));
    interrupted.signal(SIGINT);
    ASSERT_EQ(interrupted.wait(), 130);
    static_cast<void>(port.received());
    ChildProcess next(flashwrite({port.path(), "115200", "image.bin"}));
    EXPECT_EQ(next.wait(), 1);
    EXPECT_THAT(port.received(), HasSubstr("\x9A"));
    EXPECT_EQ(next.output(), SILENT_BOARD_LOG + neverAnswered(port.path()));
}

} // namespace
} // namespace flashwriter::testing
