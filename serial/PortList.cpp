#include "serial/PortList.h"

#include "serial/DirectoryNames.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace flashwriter {

namespace {

// How macOS names an adapter's callout device, and Linux an adapter with and without a protocol of
// its own.
constexpr std::array<std::string_view, 3> BEGINNINGS{"cu.u", "ttyUSB", "ttyACM"};

} // namespace

std::vector<std::string> portList(const std::string& directory) {
    std::vector<std::string> ports;
    for (const std::string& name : directoryNames(directory)) {
        if (std::ranges::any_of(BEGINNINGS, [&](auto start) { return name.starts_with(start); })) {
            ports.emplace_back(directory).append("/").append(name);
        }
    }
    std::ranges::sort(ports);
    return ports;
}

} // namespace flashwriter
