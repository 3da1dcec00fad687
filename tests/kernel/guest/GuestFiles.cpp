#include "tests/kernel/guest/GuestFiles.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace flashwriter::kernel {

namespace {

std::string makeDirectory() {
    std::string path = std::filesystem::temp_directory_path() / "flash-writer-guest-XXXXXX";
    if (::mkdtemp(path.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    std::filesystem::create_symlink(KERNEL_RUNNER, path + "/first");
    return path;
}

int listenAt(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor == -1 ||
        ::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(descriptor, 1) != 0) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    return descriptor;
}

} // namespace

GuestFiles::GuestFiles() : m_directory(makeDirectory()), m_listener(listenAt(path("runner"))) {}

GuestFiles::~GuestFiles() {
    ::close(m_listener);
    std::error_code ignored;
    std::filesystem::remove_all(m_directory, ignored);
}

int GuestFiles::accept() const {
    return ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
}

} // namespace flashwriter::kernel
