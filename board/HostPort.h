#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace flashwriter::board {

// What the simulated adapter needs of the port that the host has open.
class HostPort {
public:
    HostPort() = default;
    HostPort(const HostPort&) = delete;
    HostPort& operator=(const HostPort&) = delete;
    virtual ~HostPort() = default;

    // The speed that the host has set, bits per second.
    virtual std::uint32_t bitsPerSecond() = 0;
    // Hands bytes to the host; gives how many fitted. Never waits.
    virtual std::size_t send(std::span<const std::uint8_t> bytes) = 0;
    // Whether that may be done while the host has the port closed, too: an adapter's chip goes on
    // receiving then, and keeps what fits it.
    virtual bool receivesWhileClosed() const { return false; }
    // Takes the port away from the host, at the latest when the call at hand has returned.
    virtual void unplug() = 0;
    // Leaves room for so few bytes of the host.
    virtual void jam(std::size_t room) = 0;
};

} // namespace flashwriter::board
