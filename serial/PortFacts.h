// What can be told about a serial port without opening it, for whoever has to explain why a write
// failed and what to do about it. Opening would not do: it moves the port's lines, and a board
// hangs on them.
#pragma once

#include "serial/platform/PortInspection.h"

#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter {

enum class PortState : std::uint8_t {
    Missing,  // nothing stands at the path
    Hidden,   // the system refuses to look at it; PortFacts::error says why
    NotPort,  // a file, a directory, a pipe, another kind of device
    Refused,  // a device that this user may not open for reading and writing
    Permitted // a device that this user may open
};

enum class GroupMembership : std::uint8_t {
    None,
    NextLogin, // the user database says so; this session began before it did
    Active
};

struct PortFacts {
    PortState state = PortState::Missing;
    int error = 0;    // errno of Missing and Hidden, otherwise 0
    std::string user; // who this process runs as: a name, or the number of a user without one

    // Of what stands at the path; Missing and Hidden leave them at their defaults.
    std::string group;                                  // the owning group, likewise
    bool groupMayUse = false;                           // the owning group may read and write
    GroupMembership membership = GroupMembership::None; // the user's in that group
    std::vector<PortHolder> holders; // other processes that have it open; see portHolders()
};

// Looks at path (UTF-8; symbolic links are followed). Never fails; the answer is as old as the
// call.
PortFacts portFacts(const std::string& path);

} // namespace flashwriter
