#pragma once

#include "board/BoardTime.h"
#include "board/Protocol.h"

#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter::board {

// One line of the transcript: a frame, or something else worth telling.
struct TranscriptRecord {
    enum class Kind : std::uint8_t {
        hostFrame, // a complete frame of the host
        unheard,   // host bytes that make no frame, or that nobody listened to
        reply,     // a reply frame
        chatter,   // what the running program says
        mode,      // the target changed its mode
        line,      // the port was opened or closed, DTR or BREAK changed, a request for them failed
        fault,     // a fault took effect on the adapter: it was unplugged, or got stuck
    };

    Kind kind = Kind::mode;
    // Microseconds of CLOCK_MONOTONIC. A host frame: when its first byte came to the adapter, and
    // when its last bit was due on the wire; written is 0. A reply: when the target had it ready,
    // when its last bit was due, and when the adapter handed it to the host (0: never). Everything
    // else: all three are the moment it happened.
    std::int64_t begin = 0;
    std::int64_t due = 0;
    std::int64_t written = 0;
    // Add it to one of the above for microseconds of CLOCK_REALTIME, since the epoch.
    std::int64_t realTimeOffset = 0;

    Bytes bytes; // as sent by the host, or as handed to the host
    std::string meaning;
    bool violation = false;       // the host broke the protocol
    std::uint32_t boardSpeed = 0; // bits per second of the board; 0: no bytes are meant
    std::uint32_t hostSpeed = 0;  // and of the host's port
};

using Transcript = std::vector<TranscriptRecord>;

// One line without its line feed: seconds of CLOCK_REALTIME with microseconds, the direction
// (">" to the board, "<" to the host, "-" neither), the bytes, the meaning.
std::string transcriptLine(const TranscriptRecord& record);

// All lines, each with its line feed.
std::string transcriptText(const Transcript& transcript);

// For each data frame after the first of a transfer: the microseconds from the moment that the last
// bit of the preceding reply was due to the first byte of the data frame. It is what the host and
// its system took.
std::vector<std::int64_t> hostOverheads(const Transcript& transcript);

} // namespace flashwriter::board
