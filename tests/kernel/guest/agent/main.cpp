// The first process of the emulated machine, once its drivers are there:
//   kernel-agent <channel's device>
#include "tests/kernel/guest/agent/Agent.h"

#include <fcntl.h>
#include <sys/reboot.h>
#include <unistd.h>

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    try {
        const int channel = argc == 2 ? ::open(argv[1], O_RDWR | O_CLOEXEC) : -1;
        flashwriter::kernel::Agent(channel).run();
    } catch (const std::exception& error) {
        std::cerr << "agent: " << error.what() << '\n';
    }
    ::reboot(RB_POWER_OFF); // a machine without its first process would only panic
}
