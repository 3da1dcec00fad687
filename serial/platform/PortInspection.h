// What a system knows about a device without opening it. Each keeps that in a place of its own: one
// file for each defines these three. They never fail, and an answer is as old as the call.
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

// Whether the character device at path is known to be something else than a terminal, which every
// serial port is: a disk's controller, the null device.
bool isOtherDevice(const std::string& path);

// The shell's commands that list the system's serial ports, one path per line; they are to be tried
// in order until one exits with 0, which is when it found any. The first is the same everywhere: on
// Linux a udev rule may make such links. What follows lists the system's own names.
std::vector<const char*> portListCommands();

} // namespace platform

} // namespace flashwriter
