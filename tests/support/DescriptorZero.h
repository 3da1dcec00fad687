// For tests of what happens to descriptor 0, which is where the transport's descriptor starts out.
#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace flashwriter::testing {

// While it lives, descriptor 0 is /dev/null, and a test may have it closed; what it was before
// comes back at the end.
class DescriptorZero {
public:
    DescriptorZero() : m_saved(::dup(0)) {
        const int null = ::open("/dev/null", O_RDWR);
        ::dup2(null, 0);
        if (null != 0) {
            ::close(null);
        }
    }
    ~DescriptorZero() {
        if (m_saved != -1) {
            ::dup2(m_saved, 0);
            ::close(m_saved);
        }
    }
    DescriptorZero(const DescriptorZero&) = delete;
    DescriptorZero& operator=(const DescriptorZero&) = delete;

    static bool isOpen() { return ::fcntl(0, F_GETFD) != -1; }

private:
    int m_saved;
};

} // namespace flashwriter::testing
