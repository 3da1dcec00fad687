#include "tests/support/PseudoTerminal.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace flashwriter::testing {

PseudoTerminal::PseudoTerminal() : m_master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    std::array<char, 64> name{};
    if (m_master == -1 || ::grantpt(m_master) == -1 || ::unlockpt(m_master) == -1 ||
        ::ptsname_r(m_master, name.data(), name.size()) != 0) {
        throw std::runtime_error("no pseudo-terminal");
    }
    m_portPath = name.data();
}

PseudoTerminal::~PseudoTerminal() {
    unplug();
}

void PseudoTerminal::makeRaw() const {
    termios attributes{};
    ::tcgetattr(m_master, &attributes);
    ::cfmakeraw(&attributes);
    ::tcsetattr(m_master, TCSANOW, &attributes);
}

void PseudoTerminal::send(const std::vector<std::uint8_t>& bytes) const {
    if (::write(m_master, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
        throw std::runtime_error("the pseudo-terminal took less than it was given");
    }
}

std::vector<std::uint8_t> PseudoTerminal::receive(std::size_t count) const {
    constexpr int PATIENCE_MS = 10000;
    std::vector<std::uint8_t> bytes(count);
    std::size_t received = 0;
    pollfd readable{m_master, POLLIN, 0};
    while (received < count && ::poll(&readable, 1, PATIENCE_MS) == 1) {
        const ssize_t size = ::read(m_master, &bytes[received], count - received);
        if (size <= 0) {
            break;
        }
        received += static_cast<std::size_t>(size);
    }
    bytes.resize(received);
    return bytes;
}

void PseudoTerminal::unplug() {
    if (m_master != -1) {
        ::close(m_master);
        m_master = -1;
    }
}

} // namespace flashwriter::testing
