// A program of its own that knows nothing of a virtual board: it opens the port that it is given,
// gets through mode entry, programs one block and closes. Its exit status says how far it got.

#include "HostSide.h"

#include <cstdio>
#include <exception>

namespace {

using namespace flashwriter::board;

int work(const char* path) {
    const HostSide host(path);
    if (host.modemLines() < 0) {
        return 2;
    }
    if (!host.connect(3)) {
        return 3;
    }
    const Bytes range = withAddress(withAddress({0x40}, 0), 0x3FF);
    if (host.exchange(commandFrame(range), 5) != kAcknowledged) {
        return 4;
    }
    for (int i = 0; i < 4; ++i) {
        if (host.exchange(dataFrame(Bytes(256, 0xA5), i == 3), 6) != kDataAcknowledged) {
            return 5;
        }
    }
    return host.receive(5) == kAcknowledged && host.setDtr(true) ? 0 : 6;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return argc == 2 ? work(argv[1]) : 1;
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "%s\n", error.what()));
        return 1;
    }
}
