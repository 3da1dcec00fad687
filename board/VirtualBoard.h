#pragma once

#include "board/BoardOptions.h"
#include "board/BoardViews.h"
#include "board/LoopThread.h"

#include <memory>
#include <string>

namespace flashwriter::board {

class EventLoop;

// A board with its adapter, offered on a pseudo-terminal: open portPath() as you would a serial
// port. It runs on a thread of its own, which sleeps whenever there is nothing to do.
//
// The modem lines and BREAK reach it only from a program that has the lines-preload library in it.
//
// All operations may be called from any thread, except that start(), stop() and destruction must
// not overlap each other. Everything that can be asked for stays valid after stop(), until the next
// start(); before the first start() there is nothing, and asking throws std::logic_error.
class VirtualBoard : public BoardViews {
public:
    VirtualBoard();
    ~VirtualBoard() override; // stops it

    // Powers a new board up; one that runs is stopped first. Throws std::invalid_argument for
    // options that no board has and std::system_error when the system has no pseudo-terminal to
    // give.
    void start(const BoardOptions& options = {});

    // Takes the board away: a host that has the port open finds it gone. Does nothing when stopped.
    void stop();

    // For example "/dev/pts/7"; the name is free for others once the board is stopped or unplugged.
    std::string portPath() const;

private:
    const EventLoop& loop() const;
    const BoardLoop& board() const override;

    std::unique_ptr<LoopThread<EventLoop>> m_running;
};

} // namespace flashwriter::board
