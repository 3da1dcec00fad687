// Readers of what the program says who have stopped reading. The board must not wait for them.
#include "tests/endtoend/write/WriteFixture.h"

namespace flashwriter::testing {
namespace {

class StoppedReader : public WriteFixture {
protected:
    const Bytes m_image = patternImage(3000);
    const ImageFile m_file{"image.bin", m_image};
};

TEST_F(StoppedReader, OfTheDiagnosticsHoldsNothingUp) {
    m_board.start(m_options);
    const Bytes before = m_board.codeFlash();
    ChildOptions options = flashwrite("500000", m_file.path());
    options.error = ChildStream::FullPipe;
    ChildProcess program(options);
    EXPECT_EQ(program.wait(), 0) << program.output();
    m_board.stop();
    EXPECT_EQ(m_board.violations(), 0U);
    EXPECT_TRUE(m_board.codeFlash() == flashAfter(m_image, before));
}

// A second one who reads a little at a time sees which lines it has missed.
TEST_F(StoppedReader, OfTheDiagnosticsIsToldWhatItMissed) {
    m_board.start(m_options);
    ChildOptions options = flashwrite("115200", m_file.path());
    options.error = ChildStream::FullPipe;
    ChildProcess program(options);
    ASSERT_TRUE(program.waitFor(
        [&] { return program.output().find("## Programming...") != std::string::npos; }));
    program.readFullPipes();
    EXPECT_EQ(program.wait(), 0) << program.output();
    EXPECT_TRUE(program.error().starts_with("(lines that could not be written: "))
        << program.error();
    EXPECT_TRUE(program.error().ends_with("\n0x00000000\n")) << program.error();
}

TEST_F(StoppedReader, OfTheLogHoldsOnlyTheLogUp) {
    m_board.start(m_options);
    const Bytes before = m_board.codeFlash();
    ChildOptions options = flashwrite("500000", m_file.path());
    options.output = ChildStream::FullPipe;
    ChildProcess program(options);
    EXPECT_TRUE(m_board.waitForClosings(1, std::chrono::seconds(20)));
    EXPECT_EQ(m_board.violations(), 0U);
    EXPECT_TRUE(m_board.codeFlash() == flashAfter(m_image, before));
    EXPECT_EQ(program.wait(std::chrono::milliseconds(200)), std::nullopt) << "the log is unread";
    program.readFullPipes();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_EQ(program.output(), "## Programming Mode\n"
                                "## Block Blank Check & Erace... OK\n"
                                "## Programming... OK\n"
                                "## Write Complete\n"
                                "The writing processing succeeded. \n");
}

} // namespace
} // namespace flashwriter::testing
