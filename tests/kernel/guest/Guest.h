#pragma once

#include "tests/kernel/guest/GuestFiles.h"
#include "tests/kernel/guest/GuestLink.h"
#include "tests/kernel/guest/GuestProcess.h"
#include "tests/support/ChildProcess.h"

#include <memory>
#include <string>

namespace flashwriter::kernel {

// An emulated machine with the system's own kernel, its serial drivers loaded and a USB host to
// which an adapter can be plugged. It sees this machine's files, as they are now, and what it
// writes itself is gone at the end, as is everything that runs in it. It lives by the clock on the
// wall.
class Guest {
public:
    // Boots it. Throws std::runtime_error with what its kernel said when that fails; it takes some
    // seconds.
    Guest();
    ~Guest() = default;
    Guest(const Guest&) = delete;
    Guest& operator=(const Guest&) = delete;

    // The socket on which the machine's USB port waits for a device.
    const std::string& adapterSocket() const { return m_adapterSocket; }

    // Starts a process; any number may run at once.
    std::unique_ptr<GuestProcess> start(const Command& command);

    // Runs a line of shell to its end, and gives what it said on standard output. Throws
    // std::runtime_error when its status is not 0.
    std::string shell(const std::string& line);

    // What the kernel said on its console.
    std::string console() const;

private:
    testing::ChildOptions machine() const;
    void awaitRunner();

    GuestFiles m_files;
    std::string m_adapterSocket;
    std::unique_ptr<testing::ChildProcess> m_machine;
    std::unique_ptr<GuestLink> m_link;
};

} // namespace flashwriter::kernel
