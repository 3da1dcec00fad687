// A file that exists in memory only, with a path by which it can be opened while the object is
// there.
#pragma once

#include "tests/fuzz/Require.h"

#include <sys/mman.h>
#include <unistd.h>

#include <string>

namespace flashwriter::fuzz {

class MemoryFile {
public:
    MemoryFile() : m_descriptor(::memfd_create("image", MFD_CLOEXEC)) {
        require(m_descriptor >= 0, "there is a file in memory");
    }
    ~MemoryFile() { ::close(m_descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

    // Makes the file consist of these bytes and then, up to size, of zeros.
    void write(const void* bytes, std::size_t count, std::size_t size) const {
        require(::ftruncate(m_descriptor, 0) == 0 &&
                    ::pwrite(m_descriptor, bytes, count, 0) == static_cast<ssize_t>(count) &&
                    ::ftruncate(m_descriptor, static_cast<off_t>(size)) == 0,
                "the file takes what is written");
    }
    void write(const void* bytes, std::size_t count) const { write(bytes, count, count); }

private:
    int m_descriptor;
};

} // namespace flashwriter::fuzz
