#pragma once

#include <string>

namespace flashwriter::testing {

// A pseudo-terminal of a certain width to put a program's output on. Both ends are open in this
// process, so that what is written to either stays to be read from the other. It passes bytes as
// they are, without echo or translation of line ends; Ctrl-C keeps its meaning.
class Terminal {
public:
    // Throws std::system_error. columns is what programs that ask for the window's width are told.
    explicit Terminal(unsigned short columns = 80);
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    int master() const { return m_master; }
    int slave() const { return m_slave; }
    const std::string& path() const { return m_path; } // of the slave, a character device

    void closeSlave();

    // What has been written to the slave and not been taken yet; never waits.
    std::string taken() const;

private:
    int m_master = -1;
    int m_slave = -1;
    std::string m_path;
};

} // namespace flashwriter::testing
