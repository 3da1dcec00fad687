#include "tests/endtoend/console/Flashwrite.h"

#include <gmock/gmock.h>

#include <string>

namespace flashwriter::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// A run on a port behind which nobody answers.
class FlashwriteStreams : public ::testing::Test {
protected:
    SilentPort port;
    ChildOptions options = flashwrite({port.path(), "115200", "image.bin"});

    std::string wholeOutput() const { return SILENT_BOARD_LOG + neverAnswered(port.path()); }
};

TEST_F(FlashwriteStreams, DiagnosticsGoToAStandardErrorThatIsNoTerminal) {
    ChildProcess program(options);
    EXPECT_EQ(program.wait(), 1);
    EXPECT_EQ(program.output(), wholeOutput());
    EXPECT_THAT(program.error(), HasSubstr("SendDataSize: 1 Bytes\n"));
    EXPECT_THAT(program.error(), HasSubstr("## Reset before shutdown\n"));
    EXPECT_THAT(program.error(), Not(HasSubstr("%")));
    EXPECT_THAT(program.error(), Not(HasSubstr("\r")));
}

TEST_F(FlashwriteStreams, ProgressGoesToAStandardErrorThatIsATerminal) {
    options.error = ChildStream::Terminal;
    ChildProcess program(options);
    EXPECT_EQ(program.wait(), 1);
    EXPECT_EQ(program.output(), wholeOutput());
    EXPECT_THAT(program.terminal(), HasSubstr("Changing to programming mode. (0 %) ["));
    EXPECT_THAT(program.terminal(), Not(HasSubstr("SendDataSize")));
    EXPECT_TRUE(program.terminal().ends_with(" \r")) << "the progress is still there";
}

TEST_F(FlashwriteStreams, ATerminalForBothEndsWithTheOutcome) {
    options.output = ChildStream::Terminal;
    options.error = ChildStream::Terminal;
    ChildProcess program(options);
    EXPECT_EQ(program.wait(), 1);
    EXPECT_THAT(program.terminal(), HasSubstr("Changing to programming mode. (5 %) ["));
    EXPECT_TRUE(program.terminal().ends_with("## Write Failed\nThe writing processing failed\n"
                                             "ERROR:0x00002009\n"
                                             "COM = 0x9A, Retry = 5\n"
                                             "ST1 = 0x00, DST1 = 0x00, DST2 = 0x00\n" +
                                             neverAnswered(port.path())))
        << program.terminal();
}

TEST_F(FlashwriteStreams, ATerminalForTheLogAloneHasNoProgress) {
    options.output = ChildStream::Terminal;
    ChildProcess program(options);
    EXPECT_EQ(program.wait(), 1);
    EXPECT_EQ(program.terminal(), wholeOutput());
    EXPECT_THAT(program.error(), HasSubstr("SendDataSize: 1 Bytes\n"));
}

TEST_F(FlashwriteStreams, ANarrowTerminalIsNotWrapped) {
    options.error = ChildStream::Terminal;
    options.columns = 10;
    ChildProcess program(options);
    EXPECT_EQ(program.wait(), 1);
    EXPECT_TRUE(program.terminal().starts_with("0 %\r")) << program.terminal();
}

// The port would get the lowest number that is free, and with it what was meant for that stream.
void expectOnlyFramesOnThePort(const ChildOptions& options, const SilentPort& port) {
    ChildProcess program(options);
    EXPECT_EQ(program.wait(), 1);
    const std::string sent = port.received();
    EXPECT_THAT(sent, Not(HasSubstr("#")));
    EXPECT_THAT(sent, Not(HasSubstr("SendDataSize")));
    EXPECT_THAT(sent, HasSubstr("\x9A")); // the board is still asked to agree on the speed
}

TEST_F(FlashwriteStreams, AClosedStandardOutputIsNotTakenForThePort) {
    options.output = ChildStream::Closed;
    expectOnlyFramesOnThePort(options, port);
}

TEST_F(FlashwriteStreams, AClosedStandardErrorIsNotTakenForThePort) {
    options.error = ChildStream::Closed;
    expectOnlyFramesOnThePort(options, port);
}

TEST_F(FlashwriteStreams, NeitherIsAnyWhenAllAreClosed) {
    options.closedInput = true;
    options.output = ChildStream::Closed;
    options.error = ChildStream::Closed;
    expectOnlyFramesOnThePort(options, port);
}

TEST_F(FlashwriteStreams, AReaderOfTheDiagnosticsWhoDoesNotReadStopsNothing) {
    options.error = ChildStream::FullPipe;
    ChildProcess program(options);
    EXPECT_EQ(program.wait(), 1);
    EXPECT_EQ(program.output(), wholeOutput());
    program.readFullPipes();
    EXPECT_EQ(program.error(), "");
}

TEST_F(FlashwriteStreams, ADiskThatIsFullStopsNothing) {
    options.errorFile = "/dev/full";
    ChildProcess program(options);
    EXPECT_EQ(program.wait(), 1);
    EXPECT_EQ(program.output(), wholeOutput());
}

TEST_F(FlashwriteStreams, ReadersThatHaveGoneStopNothing) {
    ChildProcess program(options);
    program.stopReadingOutput();
    program.stopReadingError();
    EXPECT_EQ(program.wait(), 1);
    EXPECT_THAT(port.received(), HasSubstr("\x9A"));
}

} // namespace
} // namespace flashwriter::testing
