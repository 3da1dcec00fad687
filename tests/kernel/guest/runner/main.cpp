// The first process of the emulated machine, once its drivers are there:
//   kernel-runner <channel's device>
#include "tests/kernel/guest/runner/Runner.h"

#include <fcntl.h>
#include <sys/reboot.h>
#include <unistd.h>

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    try {
        const int channel = argc == 2 ? ::open(argv[1], O_RDWR | O_CLOEXEC) : -1;
        flashwriter::kernel::Runner(channel).run();
    } catch (const std::exception& error) {
        std::cerr << "runner: " << error.what() << '\n';
    }
    ::reboot(RB_POWER_OFF); // a machine without its first process would only panic
}
