#include "bench/window/BoardProcess.h"

#include <csignal>
#include <stdexcept>

namespace flashwriter::bench {

namespace {

const std::string PORT_WORD = "port ";

testing::ChildOptions boardOf(const std::string& program) {
    testing::ChildOptions options;
    options.arguments = {program, "--flash-kib", "256", "--strict"};
    return options;
}

} // namespace

BoardProcess::BoardProcess(const std::string& program) : m_process(boardOf(program)) {
    const auto isReady = [this] { return m_process.output().ends_with('\n'); };
    if (!m_process.waitFor(isReady) || !m_process.output().starts_with(PORT_WORD)) {
        throw std::runtime_error("the virtual board does not start: " + m_process.error());
    }
    m_port = m_process.output().substr(PORT_WORD.size());
    m_port.pop_back();
}

bool BoardProcess::finish() {
    m_process.signal(SIGTERM);
    return m_process.wait() == 0;
}

} // namespace flashwriter::bench
