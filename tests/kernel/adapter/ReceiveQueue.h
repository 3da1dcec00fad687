#pragma once

#include "tests/kernel/adapter/UsbTypes.h"

#include <deque>
#include <optional>
#include <span>

namespace flashwriter::kernel {

// The bytes that came from the board and wait for the host to ask for them.
class ReceiveQueue {
public:
    ReceiveQueue() = default;
    ReceiveQueue(const ReceiveQueue&) = delete;
    ReceiveQueue& operator=(const ReceiveQueue&) = delete;
    virtual ~ReceiveQueue() = default;

    // Gives how many fitted.
    std::size_t push(std::span<const std::uint8_t> bytes);
    void clear() { m_bytes.clear(); }

    // What the host gets that has asked for so many bytes; nothing: it has to wait.
    virtual std::optional<Bytes> take(std::size_t length, BoardTime now) = 0;

    // How many bytes the host has taken so far.
    std::size_t taken() const { return m_taken; }

    // When a host that waits gets something even if nothing more comes from the board.
    virtual std::optional<BoardTime> nextDeadline() const = 0;

protected:
    std::size_t size() const { return m_bytes.size(); }
    // Moves the oldest ones behind these; at most so many.
    void moveTo(Bytes& bytes, std::size_t count);

private:
    std::deque<std::uint8_t> m_bytes;
    std::size_t m_taken = 0;
};

// Hands the bytes over as they are, as soon as there are some.
class PlainQueue : public ReceiveQueue {
public:
    std::optional<Bytes> take(std::size_t length, BoardTime now) override;
    std::optional<BoardTime> nextDeadline() const override { return std::nullopt; }
};

} // namespace flashwriter::kernel
