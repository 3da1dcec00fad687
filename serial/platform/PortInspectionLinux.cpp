// Linux: every process shows what it has open as links in /proc, and every device the class that it
// belongs to in /sys.
#include "serial/platform/PortInspection.h"

#include "serial/DirectoryNames.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <fstream>
#include <optional>

namespace flashwriter::platform {

namespace {

// The text of a symbolic link; empty when it cannot be read.
std::string textOf(const std::string& link) {
    std::array<char, PATH_MAX> text{};
    const ssize_t size = ::readlink(link.c_str(), text.data(), text.size());
    return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
}

std::optional<std::int32_t> processId(const std::string& name) {
    std::int32_t pid = 0;
    const auto parsed = std::from_chars(name.data(), name.data() + name.size(), pid);
    return parsed.ec == std::errc() && parsed.ptr == name.data() + name.size() ? std::optional(pid)
                                                                               : std::nullopt;
}

// The link's text is looked at first, so that nothing but devices is ever asked for its status: a
// file on a network that does not answer would keep us waiting.
bool leadsTo(const std::string& link, dev_t device) {
    struct stat status {};
    return textOf(link).starts_with("/dev/") && ::stat(link.c_str(), &status) == 0 &&
           S_ISCHR(status.st_mode) && status.st_rdev == device;
}

bool holds(const std::string& process, dev_t device) {
    const std::string links = process + "/fd";
    return std::ranges::any_of(directoryNames(links), [&](const std::string& name) {
        return leadsTo(links + "/" + name, device);
    });
}

std::string nameOf(const std::string& process) {
    std::ifstream file(process + "/comm");
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
    for (const std::string& name : directoryNames("/proc")) {
        const auto pid = processId(name);
        const std::string process = "/proc/" + name;
        if (pid && *pid != ::getpid() && holds(process, status.st_rdev)) {
            holders.push_back({*pid, nameOf(process)});
        }
    }
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
    const std::string deviceClass = textOf("/sys/dev/char/" + number + "/subsystem");
    return !deviceClass.empty() && !deviceClass.ends_with("/tty");
}

// Adapters without a protocol of their own are ttyUSB, those of the modem class are ttyACM.
std::vector<const char*> portListCommands() {
    return {"/bin/ls /dev/cu.u*", "/bin/ls /dev/tty[AU][CS][BM]*"};
}

} // namespace flashwriter::platform
