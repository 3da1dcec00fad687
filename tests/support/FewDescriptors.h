#pragma once

#include <sys/resource.h>
#include <unistd.h>

namespace flashwriter::testing {

// Leaves the process so many descriptors to open while it lives, or fewer. One at a time.
class FewDescriptors {
public:
    explicit FewDescriptors(rlim_t free = 0) {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        const int lowestFree = ::dup(0);
        ::close(lowestFree);
        const rlimit few{static_cast<rlim_t>(lowestFree) + free, m_before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

private:
    rlimit m_before{};
};

} // namespace flashwriter::testing
