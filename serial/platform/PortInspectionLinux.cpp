// Linux: every process shows what it has open as links in /proc, and every device the class that it
// belongs to in /sys.
#include "serial/platform/PortInspection.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <optional>

namespace flashwriter::platform {

namespace {

namespace fs = std::filesystem;

// Goes through a directory that may change or vanish meanwhile, until use answers true; whether it
// ever did.
template <class Use>
bool anyEntry(const fs::path& directory, Use use) {
    std::error_code error;
    fs::directory_iterator entries(directory, error);
    for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
        if (use(entries->path())) {
            return true;
        }
    }
    return false;
}

std::optional<std::int32_t> processId(const fs::path& entry) {
    const std::string name = entry.filename();
    std::int32_t pid = 0;
    const auto parsed = std::from_chars(name.data(), name.data() + name.size(), pid);
    return parsed.ec == std::errc() && parsed.ptr == name.data() + name.size() ? std::optional(pid)
                                                                               : std::nullopt;
}

// The link's text is looked at first, so that nothing but devices is ever asked for its status: a
// file on a network that does not answer would keep us waiting.
bool leadsTo(const fs::path& link, dev_t device) {
    std::error_code error;
    const std::string target = fs::read_symlink(link, error);
    struct stat status {};
    return !error && target.starts_with("/dev/") && ::stat(link.c_str(), &status) == 0 &&
           S_ISCHR(status.st_mode) && status.st_rdev == device;
}

std::string nameOf(const fs::path& process) {
    std::ifstream file(process / "comm");
    std::string name;
    std::getline(file, name);
    return name;
}

} // namespace

std::vector<PortHolder> portHolders(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) {
        return {};
    }
    std::vector<PortHolder> holders;
    anyEntry("/proc", [&](const fs::path& process) {
        const auto pid = processId(process);
        if (pid && *pid != ::getpid() && anyEntry(process / "fd", [&](const fs::path& link) {
                return leadsTo(link, status.st_rdev);
            })) {
            holders.push_back({*pid, nameOf(process)});
        }
        return false;
    });
    std::ranges::sort(holders, {}, &PortHolder::pid);
    return holders;
}

// A device without a class, such as a pseudo-terminal's, is given the benefit of the doubt.
bool isOtherDevice(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return false;
    }
    const std::string number = std::to_string(gnu_dev_major(status.st_rdev)) + ":" +
                               std::to_string(gnu_dev_minor(status.st_rdev));
    std::error_code error;
    const fs::path deviceClass = fs::read_symlink("/sys/dev/char/" + number + "/subsystem", error);
    return !error && deviceClass.filename() != "tty";
}

// Adapters without a protocol of their own are ttyUSB, those of the modem class are ttyACM.
std::vector<const char*> portListCommands() {
    return {"/bin/ls /dev/cu.u*", "/bin/ls /dev/tty[AU][CS][BM]*"};
}

} // namespace flashwriter::platform
