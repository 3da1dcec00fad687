#include "serial/PortList.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace flashwriter {

namespace {

// How macOS names an adapter's callout device, and Linux an adapter with and without a protocol of
// its own.
constexpr std::array<std::string_view, 3> BEGINNINGS{"cu.u", "ttyUSB", "ttyACM"};

} // namespace

std::vector<std::string> portList(const std::string& directory) {
    std::vector<std::string> ports;
    std::error_code error;
    std::filesystem::directory_iterator entries(directory, error);
    for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
        const std::string name = entries->path().filename();
        if (std::ranges::any_of(BEGINNINGS, [&](auto start) { return name.starts_with(start); })) {
            ports.push_back(entries->path());
        }
    }
    std::ranges::sort(ports);
    return ports;
}

} // namespace flashwriter
