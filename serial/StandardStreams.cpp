#include "serial/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <initializer_list>

namespace flashwriter {

void secureStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) == -1) {
            ::open("/dev/null", O_RDWR); // takes the lowest number that is free: this one
        }
    }
}

} // namespace flashwriter
