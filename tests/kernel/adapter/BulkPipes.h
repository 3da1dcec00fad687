#pragma once

#include "tests/kernel/adapter/ReceiveQueue.h"
#include "tests/kernel/adapter/UsbTypes.h"

#include "board/Adapter.h"

#include <deque>
#include <optional>

namespace flashwriter::kernel {

// The bulk transfers that the host has begun, each held until it can be finished: those to the host
// until there is something to tell, those from the host until the board has taken every byte.
class BulkPipes {
public:
    void askForBytes(std::uint64_t id, std::uint8_t endpoint, std::size_t length);
    void handBytes(std::uint64_t id, std::uint8_t endpoint, Bytes bytes);

    // Finishes a transfer that is held, or all of them, as cancelled.
    void cancel(std::uint64_t id);
    void cancelAll();

    // From now on so many bytes more vanish in the adapter, which the board no longer takes.
    void jam(std::size_t room) { m_swallows = room; }

    // Moves what can be moved now.
    void takeFromHost(board::Adapter& adapter, BoardTime now);
    void giveToHost(ReceiveQueue& queue, BoardTime now);

    // Whether the host waits for bytes.
    bool asked() const { return !m_toHost.empty(); }

    FinishedTransfers takeFinished();

private:
    struct Held {
        std::uint64_t id = 0;
        std::uint8_t endpoint = 0;
        std::size_t length = 0; // asked for, or moved so far
        Bytes bytes;            // from the host
    };

    bool moveFront(board::Adapter& adapter, BoardTime now);
    void finishCancelled(const Held& held);

    std::deque<Held> m_toHost;
    std::deque<Held> m_fromHost;
    std::size_t m_swallows = 0; // bytes
    FinishedTransfers m_finished;
};

} // namespace flashwriter::kernel
