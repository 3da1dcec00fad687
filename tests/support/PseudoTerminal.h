#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter::testing {

// A pseudo-terminal for a test: the program opens portPath(), the test holds the other end. The
// port starts with the kernel's defaults, as one that nobody has set up.
class PseudoTerminal {
public:
    PseudoTerminal();
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    const char* portPath() const { return m_portPath.c_str(); }
    int master() const { return m_master; }

    // Takes the port out of the kernel's defaults, as a device that carries binary data.
    void makeRaw() const;
    void send(const std::vector<std::uint8_t>& bytes) const;
    // What the program sent: waits until count bytes are there, or a few seconds.
    std::vector<std::uint8_t> receive(std::size_t count) const;
    // Closes this end, as a device that is unplugged.
    void unplug();

private:
    int m_master;
    std::string m_portPath;
};

} // namespace flashwriter::testing
