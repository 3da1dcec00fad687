#include "tests/support/FailingReads.h"

#include <algorithm>
#include <cerrno>
#include <sys/types.h>

namespace flashwriter::testing {

Reads reads;

} // namespace flashwriter::testing

extern "C" {
ssize_t __real_pread(int descriptor, void* buffer, std::size_t size, off_t offset);

ssize_t __wrap_pread(int descriptor, void* buffer, std::size_t size, off_t offset) {
    auto& reads = flashwriter::testing::reads;
    if (++reads.made == reads.failing) {
        errno = EIO;
        return -1;
    }
    const std::size_t most = reads.most == 0 ? size : std::min(size, reads.most);
    return __real_pread(descriptor, buffer, most, offset);
}
}
