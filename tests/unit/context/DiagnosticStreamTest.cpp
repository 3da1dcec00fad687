#include "sequence/context/DiagnosticStream.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <future>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace flashwriter {
namespace {

using ::testing::EndsWith;

// Two connected descriptors, of which the reader's never waits.
struct Ends {
    ~Ends() {
        ::close(reader);
        ::close(writer);
    }
    std::string taken() const {
        std::string text;
        std::array<char, 4096> chunk{};
        ssize_t size = 0;
        while ((size = ::read(reader, chunk.data(), chunk.size())) > 0) {
            text.append(chunk.data(), static_cast<std::size_t>(size));
        }
        return text;
    }
    int reader = -1;
    int writer = -1;
};

struct Pipe : Ends {
    Pipe() {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe(ends.data()), 0);
        reader = ends[0];
        writer = ends[1];
        ::fcntl(reader, F_SETFL, O_NONBLOCK);
    }
};

struct Socket : Ends {
    Socket() {
        std::array<int, 2> ends{};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
        reader = ends[0];
        writer = ends[1];
        ::fcntl(reader, F_SETFL, O_NONBLOCK);
    }
};

struct Terminal : Ends {
    Terminal() {
        reader = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
        EXPECT_TRUE(::grantpt(reader) == 0 && ::unlockpt(reader) == 0);
        writer = ::open(::ptsname(reader), O_RDWR | O_NOCTTY);
        EXPECT_NE(writer, -1);
    }
};

// Whether the action comes to its end. If it does not, somebody reads until it does.
template <class Action>
bool endsWithoutReader(const Ends& ends, const Action& action) {
    std::future<void> whole = std::async(std::launch::async, action);
    const bool ended = whole.wait_for(std::chrono::seconds(10)) == std::future_status::ready;
    while (whole.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) {
        static_cast<void>(ends.taken());
    }
    return ended;
}

// The first number behind a text; 0 when there is none.
unsigned long numberAfter(const std::string& text, const std::string& words) {
    const std::size_t at = text.find(words);
    return at == std::string::npos ? 0 : std::strtoul(&text[at + words.size()], nullptr, 10);
}

const char* const NOTE = "(lines that could not be written: ";

TEST(DiagnosticStream, WritesLines) {
    const Pipe pipe;
    DiagnosticStream stream(pipe.writer);
    stream.writeLine("first");
    stream.writeLine("");
    stream.writeLine("third\nfourth");
    EXPECT_EQ(pipe.taken(), "first\n\nthird\nfourth\n");
}

TEST(DiagnosticStream, KeepsALineOfAnyLengthWhole) {
    constexpr std::size_t AT_ONCE = PIPE_BUF;
    for (const std::size_t length : {AT_ONCE - 1, AT_ONCE, AT_ONCE + 1, 3 * AT_ONCE}) {
        const Pipe pipe;
        DiagnosticStream stream(pipe.writer);
        const std::string line(length, 'x');
        stream.writeLine(line);
        EXPECT_EQ(pipe.taken(), line + "\n") << length;
    }
}

// Writes lines of a length until long after nobody takes them, then reads, and writes once more.
template <class Kind>
void expectDropping(std::size_t length) {
    constexpr unsigned long COUNT = 40000;
    const Kind ends;
    DiagnosticStream stream(ends.writer);
    const std::string line(length, 'x');
    ASSERT_TRUE(endsWithoutReader(ends, [&] {
        for (unsigned long i = 0; i < COUNT; ++i) {
            stream.writeLine(line);
        }
    })) << length;
    std::string text = ends.taken();
    stream.writeLine("last");
    std::erase(text += ends.taken(), '\r'); // which a terminal puts before a line feed
    EXPECT_THAT(text, EndsWith("\nlast\n"));
    EXPECT_GT(numberAfter(text, NOTE), 0U) << length;
    unsigned long lines = 0;
    std::istringstream rest(text);
    for (std::string taken; std::getline(rest, taken);) {
        lines += taken == line ? 1 : numberAfter(taken, NOTE);
    }
    EXPECT_EQ(lines, COUNT) << length;
}

TEST(DiagnosticStream, DropsWhatAFullPipeDoesNotTake) {
    for (const std::size_t length : {1U, 37U, 500U, 4095U}) {
        expectDropping<Pipe>(length);
    }
}

TEST(DiagnosticStream, DropsWhatASocketDoesNotTake) {
    for (const std::size_t length : {1U, 37U, 500U}) {
        expectDropping<Socket>(length);
    }
}

TEST(DiagnosticStream, DropsWhatATerminalDoesNotTakeThatNobodyReads) {
    for (const std::size_t length : {1U, 37U, 180U, 255U, 256U, 500U, 2000U}) {
        expectDropping<Terminal>(length);
    }
}

TEST(DiagnosticStream, DropsWhatAStoppedTerminalDoesNotTake) {
    const Terminal terminal;
    DiagnosticStream stream(terminal.writer);
    ASSERT_EQ(::tcflow(terminal.writer, TCOOFF), 0); // what Ctrl-S does
    EXPECT_TRUE(endsWithoutReader(terminal, [&] {
        stream.writeLine("one");
        stream.writeLine("two");
    }));
    ASSERT_EQ(::tcflow(terminal.writer, TCOON), 0);
    stream.writeLine("three");
    EXPECT_EQ(terminal.taken(), NOTE + std::string("2)\r\nthree\r\n"));
}

TEST(DiagnosticStream, LosesNothingToAnotherThreadButByCounting) {
    constexpr unsigned long COUNT = 20000;
    const Pipe pipe;
    DiagnosticStream stream(pipe.writer);
    const auto writeMany = [&] {
        for (unsigned long i = 0; i < COUNT; ++i) {
            stream.writeLine("a line of some length");
        }
    };
    std::string text;
    std::future<void> one = std::async(std::launch::async, writeMany);
    std::future<void> other = std::async(std::launch::async, writeMany);
    while (one.wait_for(std::chrono::milliseconds(2)) != std::future_status::ready ||
           other.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready) {
        text += pipe.taken();
    }
    text += pipe.taken();
    stream.writeLine("a line of some length");
    text += pipe.taken();
    unsigned long lines = 0;
    std::istringstream rest(text);
    for (std::string line; std::getline(rest, line);) {
        const unsigned long dropped = numberAfter(line, NOTE);
        EXPECT_TRUE(dropped != 0 || line == "a line of some length") << line;
        lines += dropped != 0 ? dropped : 1;
    }
    EXPECT_EQ(lines, 2 * COUNT + 1);
}

TEST(DiagnosticStream, GoesOnWithoutAReader) {
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    Pipe pipe;
    DiagnosticStream stream(pipe.writer);
    ::close(pipe.reader);
    pipe.reader = -1;
    stream.writeLine("nobody reads this");
    std::signal(SIGPIPE, before);
}

TEST(DiagnosticStream, GoesOnWithoutADescriptor) {
    DiagnosticStream stream(-1);
    stream.writeLine("this goes nowhere");
    EXPECT_FALSE(takesAtOnce(-1));
}

TEST(DiagnosticStream, GoesOnWithAFullDisk) {
    Ends disk;
    disk.writer = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    DiagnosticStream stream(disk.writer);
    stream.writeLine("lost");
    stream.writeLine("lost too");
    const Pipe pipe;
    ASSERT_NE(::dup2(pipe.writer, disk.writer), -1); // somebody has made room
    stream.writeLine("here");
    EXPECT_EQ(pipe.taken(), NOTE + std::string("2)\nhere\n"));
}

// A disk that becomes full within a line: the rest of the log does not go on in that line.
TEST(DiagnosticStream, BeginsAFreshLineAfterOneThatWasCut) {
    Ends file;
    std::string path = ::testing::TempDir() + "diagnostics-XXXXXX";
    file.writer = ::mkstemp(path.data());
    file.reader = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    ::unlink(path.c_str());
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit small{10, limit.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    DiagnosticStream stream(file.writer);
    stream.writeLine("whole");
    stream.writeLine("cut here");
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    std::signal(SIGXFSZ, before);
    stream.writeLine("whole again");
    EXPECT_EQ(file.taken(), std::string("whole\ncut \n") + NOTE + "1)\nwhole again\n");
}

} // namespace
} // namespace flashwriter
