#include "tests/support/Terminal.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace flashwriter::testing {

Terminal::Terminal(unsigned short columns) : m_master(::posix_openpt(O_RDWR | O_NOCTTY)) {
    if (m_master == -1 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0 ||
        ::fcntl(m_master, F_SETFD, FD_CLOEXEC) != 0 ||
        ::fcntl(m_master, F_SETFL, O_RDWR | O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), "pseudo-terminal");
    }
    m_path = ::ptsname(m_master);
    m_slave = ::open(m_path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios attributes{};
    if (m_slave == -1 || ::tcgetattr(m_slave, &attributes) != 0) {
        throw std::system_error(errno, std::generic_category(), m_path);
    }
    ::cfmakeraw(&attributes);
    attributes.c_lflag |= ISIG; // Ctrl-C keeps its meaning
    const winsize window{24, columns, 0, 0};
    if (::tcsetattr(m_slave, TCSANOW, &attributes) != 0 ||
        ::ioctl(m_slave, TIOCSWINSZ, &window) != 0) {
        throw std::system_error(errno, std::generic_category(), m_path);
    }
}

Terminal::~Terminal() {
    closeSlave();
    ::close(m_master);
}

void Terminal::closeSlave() {
    if (m_slave != -1) {
        ::close(m_slave);
        m_slave = -1;
    }
}

std::string Terminal::taken() const {
    std::string text;
    std::array<char, 4096> chunk{};
    ssize_t size = 0;
    while ((size = ::read(m_master, chunk.data(), chunk.size())) > 0) {
        text.append(chunk.data(), static_cast<std::size_t>(size));
    }
    return text;
}

} // namespace flashwriter::testing
