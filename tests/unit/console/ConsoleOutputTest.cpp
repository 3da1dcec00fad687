#include "console/ConsoleOutput.h"

#include "tests/support/Terminal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace flashwriter {
namespace {

// What a person sees: the text put onto a screen of that many columns, line by line, with blanks at
// the ends of lines left out.
std::string onScreen(const std::string& text, std::size_t columns) {
    std::vector<std::string> lines(1);
    std::size_t column = 0;
    for (const char character : text) {
        if (character == '\r') {
            column = 0;
            continue;
        }
        if (character == '\n' || column == columns) {
            lines.emplace_back();
            column = 0;
        }
        if (character != '\n') {
            lines.back().resize(std::max(lines.back().size(), column + 1), ' ');
            lines.back()[column++] = character;
        }
    }
    std::string screen;
    for (std::string& line : lines) {
        screen += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return screen;
}

class Pipe {
public:
    Pipe() { EXPECT_EQ(::pipe2(m_ends.data(), O_NONBLOCK), 0); }
    ~Pipe() {
        ::close(m_ends[0]);
        ::close(m_ends[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    int input() const { return m_ends[1]; }
    std::string taken() const {
        std::string text(65536, '\0');
        text.resize(static_cast<std::size_t>(
            std::max<ssize_t>(::read(m_ends[0], text.data(), text.size()), 0)));
        return text;
    }

private:
    std::array<int, 2> m_ends{};
};

void playWrite(ConsoleOutput& output) {
    output.write("## Programming Mode\n");
    output.showProgress(101, 5);
    output.write("## Block Blank Check & Erace...");
    output.showProgress(102, 20);
    output.write(" OK\n");
    output.write("## Programming...");
    output.showProgress(103, 60);
    output.showProgress(103, 100);
    output.write(" OK\n");
    output.hideProgress();
    output.write("## Write Complete");
    output.writeLines("The writing processing succeeded. ");
}

const char* const LOG = "## Programming Mode\n"
                        "## Block Blank Check & Erace... OK\n"
                        "## Programming... OK\n"
                        "## Write Complete\n"
                        "The writing processing succeeded. \n";

TEST(ConsoleOutput, TheLogGoesOutByteForByteAndThereIsNoProgressWithoutATerminal) {
    const Pipe log;
    const Pipe progress;
    ConsoleOutput output(log.input(), progress.input());
    EXPECT_FALSE(output.showsProgress());
    playWrite(output);
    EXPECT_EQ(log.taken(), LOG);
    EXPECT_EQ(progress.taken(), "");
}

TEST(ConsoleOutput, ALogInAFileIsTheSameBesideProgressOnATerminal) {
    const Pipe log;
    const testing::Terminal terminal;
    ConsoleOutput output(log.input(), terminal.slave());
    EXPECT_TRUE(output.showsProgress());
    playWrite(output);
    EXPECT_EQ(log.taken(), LOG);
    EXPECT_EQ(onScreen(terminal.taken(), 80), "\n");
}

TEST(ConsoleOutput, OnASharedTerminalNothingOfTheProgressIsLeft) {
    constexpr std::array<unsigned short, 8> WIDTHS{1, 10, 20, 33, 40, 60, 80, 200};
    for (const unsigned short columns : WIDTHS) {
        const testing::Terminal terminal(columns);
        ConsoleOutput output(terminal.slave(), terminal.slave());
        playWrite(output);
        const Pipe log;
        ConsoleOutput plain(log.input(), log.input());
        playWrite(plain);
        EXPECT_EQ(onScreen(terminal.taken(), columns), onScreen(log.taken(), columns)) << columns;
    }
}

TEST(ConsoleOutput, TheProgressStandsBehindTheLineThatWaits) {
    const testing::Terminal terminal(60);
    ConsoleOutput output(terminal.slave(), terminal.slave());
    output.write("## Programming...");
    output.showProgress(103, 50);
    EXPECT_EQ(onScreen(terminal.taken(), 60),
              "## Programming... Writing data. (50 %) [#########         ]\n");
    output.showProgress(103, 100);
    output.write(" OK\n");
    output.write("## Write Complete");
    EXPECT_EQ(
        onScreen("## Programming..." + terminal.taken(), 60),
        "## Programming... OK\n## Write Complete Writing data. (100 %) [#################]\n");
}

TEST(ConsoleOutput, TheLastColumnStaysFree) {
    const testing::Terminal terminal(28);
    ConsoleOutput output(terminal.slave(), terminal.slave());
    output.showProgress(103, 45);
    EXPECT_EQ(terminal.taken(), "Writing data. (45 %)");
}

TEST(ConsoleOutput, TheSameProgressIsNotDrawnTwice) {
    const testing::Terminal terminal;
    ConsoleOutput output(terminal.slave(), terminal.slave());
    output.showProgress(103, 45);
    EXPECT_NE(terminal.taken(), "");
    output.showProgress(103, 45);
    EXPECT_EQ(terminal.taken(), "");
}

TEST(ConsoleOutput, LinesBeginOnALineOfTheirOwn) {
    const Pipe log;
    ConsoleOutput output(log.input(), log.input());
    output.writeLines("first");
    output.write("waiting");
    output.writeLines("second\n");
    output.writeLines("third\nfourth");
    EXPECT_EQ(log.taken(), "first\nwaiting\nsecond\nthird\nfourth\n");
}

TEST(ConsoleOutput, WritesMoreThanAPipeHoldsOnlyIfSomebodyReads) {
    const Pipe pipe; // does not block: the write waits for room
    const std::string text(1000000, 'x');
    std::string received;
    std::thread reader([&] {
        while (received.size() < text.size()) {
            received += pipe.taken();
        }
    });
    writeAll(pipe.input(), text);
    reader.join();
    EXPECT_EQ(received, text);
}

TEST(ConsoleOutput, ADescriptorThatTakesNothingIsGivenUp) {
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_NE(full, -1);
    writeAll(full, "text");
    writeAll(-1, "text");
    ConsoleOutput output(full, -1);
    EXPECT_FALSE(output.showsProgress());
    playWrite(output);
    ::close(full);
}

} // namespace
} // namespace flashwriter
