#include "tests/kernel/guest/runner/Child.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string>
#include <system_error>
#include <vector>

namespace flashwriter::kernel {

namespace {

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    return ends;
}

std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (const std::string& text : texts) {
        result.push_back(const_cast<char*>(text.c_str())); // NOLINT: exec does not write to it
    }
    result.push_back(nullptr);
    return result;
}

std::vector<std::string> environmentOf(const Command& command) {
    std::vector<std::string> environment = command.environment;
    environment.emplace_back("PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin");
    environment.emplace_back("HOME=/root");
    return environment;
}

// Only what may be done between fork and exec.
[[noreturn]] void become(char* const* arguments, char* const* environment, unsigned int user,
                         const std::array<int, 3>& streams) {
    ::setsid();
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGPIPE, SIG_DFL);
    for (int i = 0; i < 3; ++i) {
        ::dup2(streams.at(static_cast<std::size_t>(i)), i);
    }
    if (user != 0 && (::setgid(user) != 0 || ::setuid(user) != 0)) {
        ::_exit(126);
    }
    ::execve(arguments[0], arguments, environment);
    ::_exit(127);
}

} // namespace

Child::Child(const Command& command) {
    const std::array<int, 2> input = makePipe();
    const std::array<int, 2> output = makePipe();
    const std::array<int, 2> error = makePipe();
    m_input = input[1];
    m_output = output[0];
    m_error = error[0];
    const std::vector<std::string> environment = environmentOf(command);
    const std::vector<char*> argumentPointers = pointers(command.arguments);
    const std::vector<char*> environmentPointers = pointers(environment);
    m_pid = ::fork();
    if (m_pid == 0) {
        become(argumentPointers.data(), environmentPointers.data(), command.user,
               {input[0], output[1], error[1]});
    }
    for (const int end : {input[0], output[1], error[1]}) {
        ::close(end);
    }
    if (!command.hasInput) {
        close(m_input);
    }
    if (m_pid == -1) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
}

Child::~Child() {
    close(m_input);
    close(m_output);
    close(m_error);
}

void Child::input(std::string_view bytes) {
    if (bytes.empty() ||
        ::write(m_input, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
        close(m_input);
    }
}

void Child::close(int& descriptor) {
    if (descriptor != -1) {
        ::close(descriptor);
        descriptor = -1;
    }
}

} // namespace flashwriter::kernel
