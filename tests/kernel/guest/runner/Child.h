#pragma once

#include "tests/kernel/guest/channel/Command.h"

#include <string_view>
#include <sys/types.h>

namespace flashwriter::kernel {

// A process of the emulated machine that the runner has started, and the runner's ends of its
// streams. Who owns it closes them.
class Child {
public:
    // Throws std::system_error when there is no process to be had. A program that cannot be started
    // ends with status 127.
    explicit Child(const Command& command);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return m_pid; }
    int output() const { return m_output; } // -1 once it is closed
    int error() const { return m_error; }
    void closeOutput() { close(m_output); }
    void closeError() { close(m_error); }

    // Bytes for its standard input; none ends it. What it does not take is lost.
    void input(std::string_view bytes);

private:
    static void close(int& descriptor);

    int m_input = -1;
    int m_output = -1;
    int m_error = -1;
    pid_t m_pid = -1;
};

} // namespace flashwriter::kernel
