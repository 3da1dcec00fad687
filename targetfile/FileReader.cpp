#include "targetfile/FileReader.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace flashwriter {

namespace {

// The reason not to read what status describes; 0 for a regular file.
int refusal(const struct stat& status) {
    if (S_ISDIR(status.st_mode)) {
        return EISDIR;
    }
    return S_ISREG(status.st_mode) ? 0 : EINVAL;
}

// Looks before opening, so that a device is not touched at all. A path with a NUL in it names
// nothing, though the system would see a shorter path in it.
int refusal(const std::string& path) {
    struct stat status {};
    if (path.find('\0') != std::string::npos) {
        return ENOENT;
    }
    return ::stat(path.c_str(), &status) == 0 ? refusal(status) : errno;
}

int openForReading(const std::string& path) {
    for (;;) {
        const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
        if (descriptor >= 0 || errno != EINTR) {
            return descriptor;
        }
    }
}

} // namespace

FileReader::FileReader(const std::string& path) : m_error(refusal(path)) {
    if (m_error != 0) {
        return;
    }
    m_descriptor = openForReading(path);
    struct stat status {};
    if (m_descriptor < 0 || ::fstat(m_descriptor, &status) != 0) {
        m_error = errno;
    } else {
        // Something else may have taken the path since it was looked at.
        m_error = refusal(status);
    }
    if (m_error != 0 && m_descriptor >= 0) {
        ::close(m_descriptor);
        m_descriptor = -1;
    }
}

FileReader::~FileReader() {
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

std::int64_t FileReader::readAt(std::uint64_t offset, std::uint8_t* buffer,
                                std::size_t size) const {
    std::size_t total = 0;
    while (total < size) {
        const ssize_t count =
            ::pread(m_descriptor, buffer + total, size - total, static_cast<off_t>(offset + total));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return -1;
        }
        if (count == 0) {
            break;
        }
        total += static_cast<std::size_t>(count);
    }
    return isOpen() ? static_cast<std::int64_t>(total) : -1;
}

} // namespace flashwriter
