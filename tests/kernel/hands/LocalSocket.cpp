#include "tests/kernel/hands/LocalSocket.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>

namespace flashwriter::kernel {

LocalAddress::LocalAddress(const std::string& path) {
    m_address.sun_family = AF_UNIX;
    if (path.size() >= sizeof m_address.sun_path) {
        throw std::invalid_argument("too long for a socket: " + path);
    }
    path.copy(m_address.sun_path, path.size());
}

LineSocket::~LineSocket() {
    ::close(m_descriptor);
}

std::optional<std::string> LineSocket::read() {
    std::size_t end = std::string::npos;
    while ((end = m_unread.find('\n')) == std::string::npos) {
        std::array<char, 4096> piece{};
        const ssize_t size = ::recv(m_descriptor, piece.data(), piece.size(), 0);
        if (size > 0) {
            m_unread.append(piece.data(), static_cast<std::size_t>(size));
        } else if (size == 0 || errno != EINTR) {
            return std::nullopt;
        }
    }
    std::string line = m_unread.substr(0, end);
    m_unread.erase(0, end + 1);
    return line;
}

bool LineSocket::write(const std::string& line) {
    const std::string bytes = line + "\n";
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t size =
            ::send(m_descriptor, bytes.data() + written, bytes.size() - written, MSG_NOSIGNAL);
        if (size < 0 && errno != EINTR) {
            return false;
        }
        written += size > 0 ? static_cast<std::size_t>(size) : 0;
    }
    return true;
}

} // namespace flashwriter::kernel
