// Who has a device open. Each system keeps that in a place of its own: one file for each defines
// portHolders().
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter {

// A process that has a device open.
struct PortHolder {
    std::int32_t pid = 0;
    std::string name; // as the process calls itself: any bytes, and empty when it is not to be had
};

namespace platform {

// The processes other than this one that have the device at path open, by ascending process id. A
// symbolic link stands for the device that it leads to. Best effort: an ordinary user is not shown
// what other users' processes have open. Never fails, never opens the device.
std::vector<PortHolder> portHolders(const std::string& path);

} // namespace platform

} // namespace flashwriter
