#pragma once

#include "tests/support/ChildProcess.h"

#include <string>

namespace flashwriter::bench {

// A virtual board in a process of its own, as slow as a real one, for as long as the object lives.
class BoardProcess {
public:
    // program: path of virtual-board. Throws std::runtime_error when it does not start.
    explicit BoardProcess(const std::string& program);

    const std::string& port() const { return m_port; }

    // Ends it: whether the program that wrote has kept to the protocol.
    bool finish();

private:
    testing::ChildProcess m_process;
    std::string m_port;
};

} // namespace flashwriter::bench
