#pragma once

#include <string>

namespace flashwriter::kernel {

// A directory for one emulated machine, gone at the end with all that is in it: the sockets that it
// has, and the runner under a name that a kernel's command line can hold ("first").
class GuestFiles {
public:
    // Throws std::system_error when the system refuses something.
    GuestFiles();
    ~GuestFiles();
    GuestFiles(const GuestFiles&) = delete;
    GuestFiles& operator=(const GuestFiles&) = delete;

    std::string path(const std::string& name) const { return m_directory + "/" + name; }

    // The next connection to the socket "runner", the caller's to close; -1 when nobody waits.
    int accept() const;

private:
    std::string m_directory;
    int m_listener = -1;
};

} // namespace flashwriter::kernel
