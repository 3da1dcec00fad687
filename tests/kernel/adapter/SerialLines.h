#pragma once

#include "board/Adapter.h"

#include <optional>

namespace flashwriter::kernel {

// The adapter's lines as a driver works them. What tells that the port was opened or closed is
// that the driver raises the first of DTR and RTS, or drops the last.
class SerialLines {
public:
    // The adapter must outlive this.
    explicit SerialLines(board::Adapter& adapter) : m_adapter(adapter) {}

    bool dtr() const { return m_dtr; }
    bool rts() const { return m_rts; }

    // All are false when the adapter refuses, by a fault of its own.
    bool set(bool dtr, bool rts, board::BoardTime now);
    bool setBreak(bool on, board::BoardTime now);
    bool canBeRead(board::BoardTime now);

    // Whether nothing is left to be sent to the board.
    bool idle() const { return m_adapter.idle() && m_adapter.room() > 0; }

private:
    bool request(board::LineOperation operation, std::uint32_t bits, board::BoardTime now);

    board::Adapter& m_adapter;
    bool m_dtr = false;
    bool m_rts = false;
};

} // namespace flashwriter::kernel
