#include "board/LineServer.h"

#include <cerrno>
#include <system_error>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace flashwriter::board {

namespace {

// Whether the connection is done with.
bool serveOne(int connection, const std::function<LineAnswer(const LineRequest&)>& answer) {
    LineRequest request;
    const ssize_t got = recv(connection, &request, sizeof request, MSG_DONTWAIT);
    if (got < 0) {
        return errno != EAGAIN && errno != EINTR;
    }
    if (got == sizeof request) {
        const LineAnswer reply = answer(request);
        static_cast<void>(send(connection, &reply, sizeof reply, MSG_DONTWAIT | MSG_NOSIGNAL));
    }
    return true;
}

} // namespace

LineServer::LineServer(const std::string& portPath)
    : m_listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    struct stat status {};
    sockaddr_un address{};
    const bool known = stat(portPath.c_str(), &status) == 0;
    const socklen_t length = lineAddress(address, status.st_dev, minor(status.st_rdev));
    if (!known || !m_listener.valid() ||
        bind(m_listener.get(), reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        listen(m_listener.get(), SOMAXCONN) != 0) {
        throw std::system_error(errno, std::generic_category(),
                                "cannot listen for the lines of " + portPath);
    }
}

void LineServer::addTo(std::vector<pollfd>& entries) const {
    entries.push_back({.fd = m_listener.get(), .events = POLLIN, .revents = 0});
    for (const Descriptor& connection : m_connections) {
        entries.push_back({.fd = connection.get(), .events = POLLIN, .revents = 0});
    }
}

void LineServer::serve(const std::function<LineAnswer(const LineRequest&)>& answer) {
    for (;;) {
        Descriptor connection(accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!connection.valid()) {
            break;
        }
        m_connections.push_back(std::move(connection));
    }
    std::erase_if(m_connections, [&answer](const Descriptor& connection) {
        return serveOne(connection.get(), answer);
    });
}

} // namespace flashwriter::board
