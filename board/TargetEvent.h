#pragma once

#include "board/BoardTime.h"
#include "board/Protocol.h"

#include <cstdint>
#include <string>

namespace flashwriter::board {

// Where the target is.
enum class TargetMode : std::uint8_t {
    inReset,       // held in reset by DTR
    running,       // runs its own program
    awaitPulse,    // programming mode, before the zero byte
    awaitBaudRate, // before Baud Rate Set
    awaitReset,    // before the first Reset command
    ready,         // takes any command
    receiving,     // a Programming command was accepted, its data frames are due
    left,          // nobody spoke in time: silent until the next reset
};

const char* modeName(TargetMode mode);

// Something that happened in the target, in the order in which it happened.
struct TargetEvent {
    enum class Kind : std::uint8_t {
        hostFrame, // a complete frame of the host
        unheard,   // bytes of the host that make no frame, or that nobody listens to
        reply,     // a frame for the host
        chatter,   // what the running program says
        mode,      // the target went to another mode
    };

    Kind kind = Kind::mode;
    BoardTime begin{}; // first bit; of what the target sends: the earliest moment for it
    BoardTime end{}; // last bit; of what the target sends: the same as begin, wire time comes later
    BoardTime pause{}; // a reply that follows another: the line rests so long between the two
    Bytes bytes;
    std::string meaning;
    bool violation = false;          // the host broke the protocol
    std::uint32_t bitsPerSecond = 0; // the target's speed for these bytes
};

} // namespace flashwriter::board
