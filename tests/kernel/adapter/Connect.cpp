// The way to a host that listens.

#include "tests/kernel/adapter/RedirLink.h"

#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace flashwriter::kernel {

namespace {

constexpr auto kPatience = std::chrono::seconds(10); // a host may just be starting

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw std::system_error(ENAMETOOLONG, std::generic_category(), path);
    }
    path.copy(address.sun_path, path.size());
    return address;
}

} // namespace

board::Descriptor connectTo(const std::string& path) {
    const sockaddr_un address = addressOf(path);
    const auto giveUp = std::chrono::steady_clock::now() + kPatience;
    board::Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    while (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) !=
           0) {
        const bool mayCome = errno == ENOENT || errno == ECONNREFUSED || errno == EINTR;
        if (!mayCome || std::chrono::steady_clock::now() > giveUp) {
            throw std::system_error(errno, std::generic_category(), path);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    if (fcntl(socket.get(), F_SETFL, O_NONBLOCK) != 0) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    return socket;
}

} // namespace flashwriter::kernel
