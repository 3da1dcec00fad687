// macOS: the system is asked for the processes that have a path open. It says nothing about a
// device that is not open.
#include "serial/platform/PortInspection.h"

#include <libproc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace flashwriter::platform {

namespace {

std::string nameOf(pid_t pid) {
    std::array<char, 2 * MAXCOMLEN + 1> name{};
    const int length = ::proc_name(pid, name.data(), static_cast<std::uint32_t>(name.size()));
    return {name.data(), static_cast<std::size_t>(std::max(length, 0))};
}

} // namespace

std::vector<PortHolder> portHolders(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) {
        return {};
    }
    std::array<pid_t, 64> pids{};
    const int bytes = ::proc_listpidspath(PROC_ALL_PIDS, 0, path.c_str(), 0, pids.data(),
                                          static_cast<int>(sizeof pids));
    std::vector<PortHolder> holders;
    for (std::size_t i = 0; i < static_cast<std::size_t>(std::max(bytes, 0)) / sizeof(pid_t); ++i) {
        if (pids.at(i) != ::getpid()) {
            holders.push_back({pids.at(i), nameOf(pids.at(i))});
        }
    }
    std::ranges::sort(holders, {}, &PortHolder::pid);
    return holders;
}

bool isOtherDevice(const std::string& /*path*/) {
    return false;
}

std::vector<const char*> portListCommands() {
    return {"/bin/ls /dev/cu.u*"};
}

} // namespace flashwriter::platform
