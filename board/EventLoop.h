#pragma once

#include "board/BoardLoop.h"
#include "board/HostPort.h"
#include "board/LineServer.h"
#include "board/PortWatch.h"
#include "board/PseudoTerminal.h"

#include <optional>
#include <string>

namespace flashwriter::board {

// Lets a board live on a pseudo-terminal.
class EventLoop : public BoardLoop, private HostPort {
public:
    // The port is there when this returns. Throws as VirtualBoard::start() does.
    explicit EventLoop(const BoardOptions& options);

    const std::string& portPath() const { return m_path; }
    const Adapter& adapter() const override { return m_adapter; }

private:
    std::uint32_t bitsPerSecond() override;
    std::size_t send(std::span<const std::uint8_t> bytes) override;
    void unplug() override;
    void jam(std::size_t room) override;

    void step() override;
    void leave() override;
    void addTo(std::vector<pollfd>& entries) const override;
    std::optional<BoardTime> nextDeadline() const override;

    void takePortChanges();
    void takeHostBytes();

    PseudoTerminal m_terminal;
    std::string m_path;
    PortWatch m_watch;
    std::optional<LineServer> m_lines; // gone with the port
    bool m_unplugged = false;          // the port is to go at the end of this step
    std::size_t m_capacity = 0;        // of the pseudo-terminal, known only if a fault asks for it
    Adapter m_adapter;
};

} // namespace flashwriter::board
