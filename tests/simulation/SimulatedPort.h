#pragma once

#include "board/lines-preload/LineMessage.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <sys/types.h>

namespace flashwriter::simulation {

// A moment of virtual time, since the simulation began.
using VirtualTime = std::chrono::nanoseconds;

// A serial device as the program finds it behind platform::openDevice() and its like. It is told
// the time and has no thread of its own; whoever owns it calls it from one thread at a time.
class SimulatedPort {
public:
    SimulatedPort() = default;
    SimulatedPort(const SimulatedPort&) = delete;
    SimulatedPort& operator=(const SimulatedPort&) = delete;
    virtual ~SimulatedPort() = default;

    // Each gives 0, or the errno of the failure.
    virtual int open(VirtualTime now) = 0;
    virtual int setSpeed(std::uint64_t bitsPerSecond, VirtualTime now) = 0;
    virtual board::LineAnswer lines(const board::LineRequest& request, VirtualTime now) = 0;

    virtual void close(VirtualTime now) = 0;
    // How many bytes the device takes now, or an errno as a negative number.
    virtual ssize_t write(std::span<const std::uint8_t> bytes, VirtualTime now) = 0;
    // Drops what has not been sent yet; what has arrived and not been read is dropped by discard().
    virtual void discardOutput(VirtualTime now) = 0;
    // Lets everything happen that was due until now.
    virtual void advance(VirtualTime now) = 0;

    // What has arrived and not been read.
    bool hasArrived() const { return !m_arrived.empty(); }
    // Reads up to size bytes of it; how many.
    std::size_t take(std::uint8_t* bytes, std::size_t size);
    void discard(VirtualTime now);

protected:
    void arrive(std::span<const std::uint8_t> bytes);

private:
    std::deque<std::uint8_t> m_arrived;
};

} // namespace flashwriter::simulation
