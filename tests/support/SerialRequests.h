// Stands in for the requests that a pseudo-terminal does not have or does not answer like a driver:
// modem lines, BREAK, latency, a driver's own idea of speed and attributes, discarding. Linking
// this file's target into a test program replaces ioctl, tcgetattr, tcsetattr, tcflush, close and
// write there; all go to the kernel until the test plans an answer.
#pragma once

#include <termios.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace flashwriter::testing {

class SerialRequests {
public:
    SerialRequests();
    ~SerialRequests();
    SerialRequests(const SerialRequests&) = delete;
    SerialRequests& operator=(const SerialRequests&) = delete;

    // Requests answered here, each with the result (0, or -1 with EIO) that the plan gives it.
    std::map<unsigned long, int> plan;
    // Those that were made, in order, with the value they carried in (modem lines, flags).
    std::vector<std::pair<unsigned long, std::int64_t>> made;

    std::int32_t modemLines = 0;           // what TIOCMGET reads
    std::int32_t pendingOutput = 0;        // what TIOCOUTQ reads,
    std::int32_t outputTaken = 0;          // and so much less the next time
    bool chipIsEmpty = true;               // what TIOCSERGETLSR tells
    std::uint32_t rateAfterChange = 0;     // a driver's own idea of the speed; 0: as asked
    std::int32_t serialFlags = 0;          // of TIOCGSERIAL
    std::int32_t serialFlagsRequested = 0; // of TIOCSSERIAL

    std::optional<termios> attributesReported; // instead of the terminal's own
    std::optional<termios> attributesWritten;  // the last, when there are attributesReported
    std::atomic<bool> closesHeld{false};       // closing a terminal waits for a signal meanwhile
    std::atomic<int> discards{0};              // of both directions
    std::atomic<int> shortWrites{0};           // so many writes to a terminal take a byte less,
    std::atomic<int> fullWrites{0};            // behind so many that do not
};

} // namespace flashwriter::testing
