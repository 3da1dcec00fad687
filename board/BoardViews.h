#pragma once

#include "board/BoardLoop.h"
#include "board/FlashMemory.h"
#include "board/TargetEvent.h"
#include "board/Transcript.h"

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace flashwriter::board {

// What can be asked of a board that lives on a thread of its own, from any thread.
class BoardViews {
public:
    BoardViews(const BoardViews&) = delete;
    BoardViews& operator=(const BoardViews&) = delete;
    virtual ~BoardViews() = default;

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

protected:
    BoardViews() = default;

private:
    // Throws std::logic_error when there is no board yet.
    virtual const BoardLoop& board() const = 0;
};

} // namespace flashwriter::board
