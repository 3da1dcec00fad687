#include "tests/endtoend/write/WriteFixture.h"
#include "tests/support/HeldUp.h"

#include <fstream>
#include <iterator>

namespace flashwriter::testing {

namespace {

// The longest write here takes half a minute on the wire; only a hang takes this long.
constexpr std::chrono::minutes PATIENCE{4};

} // namespace

Bytes contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

void runTool(const std::vector<std::string>& arguments) {
    ChildOptions options;
    options.arguments = arguments;
    ChildProcess tool(options);
    ASSERT_EQ(tool.wait(), 0) << tool.error();
}

ChildOptions WriteFixture::flashwrite(const std::string& speed, const std::string& file) const {
    ChildOptions options;
    options.arguments = {FLASHWRITE, m_board.portPath(), speed, file};
    options.environment = {std::string("LD_PRELOAD=") + LINES_PRELOAD};
    options.output = ChildStream::Pipe;
    options.error = ChildStream::Terminal;
    return options;
}

WriteFixture::Written WriteFixture::write(const std::string& speed, const std::string& file) {
    Written written;
    m_board.start(m_options);
    written.before = m_board.codeFlash();
    ChildProcess program(flashwrite(speed, file));
    written.status = program.wait(PATIENCE);
    m_board.stop();
    written.output = program.output();
    written.terminal = program.terminal();
    return written;
}

void WriteFixture::writeAndReadBack(const std::string& speed, const std::string& file,
                                    const Bytes& image) {
    SCOPED_TRACE(file + " at " + speed);
    Written written = write(speed, file);
    if (written.status != 0 && board::isMadeAnew(m_board.transcript())) {
        written = write(speed, file);
    }
    EXPECT_EQ(written.status, 0) << written.output << written.terminal;
    EXPECT_EQ(written.output, "## Programming Mode\n"
                              "## Block Blank Check & Erace... OK\n"
                              "## Programming... OK\n"
                              "## Write Complete\n"
                              "The writing processing succeeded. \n");
    EXPECT_EQ(m_board.violations(), 0U);
    EXPECT_TRUE(m_board.codeFlash() == flashAfter(image, written.before)) << "the flash differs";
}

} // namespace flashwriter::testing
