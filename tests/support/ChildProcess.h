// Runs a program as a person or a script would, and watches what it says.
#pragma once

#include "tests/support/Terminal.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace flashwriter::testing {

// Where one of a child's two output streams goes.
enum class ChildStream {
    Pipe,     // to this process, each stream apart
    Terminal, // to the child's terminal, where both streams mix
    Closed,   // nowhere: the child starts without that descriptor
    FullPipe  // to a pipe that takes nothing, until readFullPipes()
};

struct ChildOptions {
    std::vector<std::string> arguments;   // the program's path, then what follows its name
    std::vector<std::string> environment; // NAME=value, on top of what this process has
    ChildStream output = ChildStream::Pipe;
    ChildStream error = ChildStream::Pipe;
    std::string errorFile; // standard error goes to this file instead: for who says much, and long
    unsigned short columns = 80; // the terminal's width
    bool closedInput = false;    // otherwise standard input is the terminal, or else /dev/null
};

// A child process in a session of its own, with default signal handling. Whatever is still running
// when the object ends is killed; nothing outlives it, nor this process, whatever ends that: so the
// thread that starts a child has to live as long as the child. The child's streams are drained only
// inside waitFor() and wait().
class ChildProcess {
public:
    using Milliseconds = std::chrono::milliseconds;

    // Throws std::system_error when there is no process to be had. A program that cannot be started
    // ends with status 127.
    explicit ChildProcess(const ChildOptions& options);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return m_pid; }

    // What came on each stream so far.
    const std::string& output() const { return m_output.text; }
    const std::string& error() const { return m_error.text; }
    const std::string& terminal() const { return m_terminalText; }

    // Waits until condition holds, asking whenever something has arrived; false when the child has
    // ended, or the time is over, without it.
    bool waitFor(const std::function<bool()>& condition, Milliseconds limit = Milliseconds(20000));

    // Waits for the end: the exit status, 128 + n after death by signal n, nothing when the time is
    // over first.
    std::optional<int> wait(Milliseconds limit = Milliseconds(20000));

    void signal(int number) const;
    void type(std::string_view keys) const; // at the terminal: "\x03" is Ctrl-C
    void stopReadingOutput();               // the reader of standard output goes away
    void stopReadingError();
    void readFullPipes(); // from now on their readers do read; what filled them is not theirs

private:
    struct Stream {
        int descriptor = -1;   // this process's end of a pipe
        bool isUnread = false; // it has been filled and is left so
        std::string text;
    };

    static int openEnd(ChildStream kind, Stream& stream, const Terminal* terminal);
    static void readInto(Stream& stream);
    void drain(int limitMilliseconds);
    bool reap(bool block);

    Stream m_output;
    Stream m_error;
    std::unique_ptr<Terminal> m_terminal;
    std::string m_terminalText;
    pid_t m_pid = -1;
    std::optional<int> m_status;
};

} // namespace flashwriter::testing
