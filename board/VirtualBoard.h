#pragma once

#include "board/BoardOptions.h"
#include "board/FlashMemory.h"
#include "board/TargetEvent.h"
#include "board/Transcript.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace flashwriter::board {

// A board with its adapter, offered on a pseudo-terminal: open portPath() as you would a serial
// port. It runs on a thread of its own, which sleeps whenever there is nothing to do.
//
// The modem lines and BREAK reach it only from a program that has the lines-preload library in it.
//
// All operations may be called from any thread, except that start(), stop() and destruction must
// not overlap each other. Everything that can be asked for stays valid after stop(), until the next
// start(); before the first start() there is nothing, and asking throws std::logic_error.
class VirtualBoard {
public:
    VirtualBoard();
    ~VirtualBoard(); // stops it
    VirtualBoard(const VirtualBoard&) = delete;
    VirtualBoard& operator=(const VirtualBoard&) = delete;

    // Powers a new board up; one that runs is stopped first. Throws std::invalid_argument for
    // options that no board has and std::system_error when the system has no pseudo-terminal to
    // give.
    void start(const BoardOptions& options = {});

    // Takes the board away: a host that has the port open finds it gone. Does nothing when stopped.
    void stop();

    // For example "/dev/pts/7"; the name is free for others once the board is stopped or unplugged.
    std::string portPath() const;

    // What has been written down so far, in the order in which it happened.
    Transcript transcript() const;

    // How often the host broke the protocol.
    std::size_t violations() const;

    TargetMode mode() const;
    Bytes codeFlash() const;
    Bytes dataFlash() const;

    // How often the host has closed the port.
    std::uint32_t closings() const;

    // How often the host has got through mode entry and then closed the port or lost it.
    std::uint32_t sessions() const;

    // Whether a fault has unplugged it.
    bool unplugged() const;

    // Wait until it is so, or the time is over; false in that case.
    bool waitForMode(TargetMode mode, std::chrono::milliseconds patience) const;
    bool waitForClosings(std::uint32_t count, std::chrono::milliseconds patience) const;

private:
    class Running;
    const Running& running() const;

    std::unique_ptr<Running> m_running;
};

} // namespace flashwriter::board
