#pragma once

#include "board/Descriptor.h"
#include "board/Protocol.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace flashwriter::board {

// A pseudo-terminal whose port the host opens. Raw from the start: bytes pass as they are.
class PseudoTerminal {
public:
    // Throws std::system_error.
    PseudoTerminal();

    const std::string& path() const { return m_path; }
    int master() const { return m_master.get(); }
    bool plugged() const { return m_master.valid(); }

    // Whether no descriptor of the port is open.
    bool hungUp() const;

    // The host's speed, in bits per second.
    std::uint32_t bitsPerSecond() const;

    // What the host has sent, as much as is there up to the limit; never waits.
    Bytes receive(std::size_t limit);

    // Hands bytes to the host; never waits, what does not fit is lost. Gives how many fitted.
    std::size_t send(std::span<const std::uint8_t> bytes);

    // How many bytes fit a pseudo-terminal that nobody reads: a matter of the system, the same for
    // all of them, found out by filling one. Takes some milliseconds. Throws std::system_error.
    static std::size_t measureCapacity();

    // Fills the buffers on the way from the host up to that capacity, less so much room (below 256
    // bytes): then the host's writes go short. The filling is what receive() would give next.
    void jam(std::size_t capacity, std::size_t room);

    // The host finds its port gone.
    void unplug() { m_master.reset(); }

private:
    Descriptor m_master;
    std::string m_path;
};

} // namespace flashwriter::board
