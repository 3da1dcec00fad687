#pragma once

#include "board/Adapter.h"
#include "tests/simulation/SimulatedPort.h"

#include <string>

namespace flashwriter::simulation {

// The virtual board behind a simulated device.
class BoardPort : public SimulatedPort, private board::HostPort {
public:
    explicit BoardPort(const board::BoardOptions& options);

    const board::Adapter& adapter() const { return m_adapter; }
    // The board's transcript, its times in virtual time.
    std::string transcriptText() const;

    int open(VirtualTime now) override;
    int setSpeed(std::uint64_t bitsPerSecond, VirtualTime now) override;
    board::LineAnswer lines(const board::LineRequest& request, VirtualTime now) override;
    void close(VirtualTime now) override;
    ssize_t write(std::span<const std::uint8_t> bytes, VirtualTime now) override;
    void discardOutput(VirtualTime now) override;
    void advance(VirtualTime now) override;

private:
    std::uint32_t bitsPerSecond() override { return m_speed; }
    std::size_t send(std::span<const std::uint8_t> bytes) override;
    void unplug() override { m_unplugged = true; }
    void jam(std::size_t room) override;

    void drain(VirtualTime now);

    std::uint32_t m_speed = 9600;
    bool m_unplugged = false;
    board::Bytes m_output;    // taken from the program, and by the adapter not yet
    std::size_t m_filler = 0; // what a jam left no room for
    board::Adapter m_adapter;
};

} // namespace flashwriter::simulation
