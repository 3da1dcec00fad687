#pragma once

#include "tests/kernel/adapter/DeviceDescription.h"
#include "tests/kernel/adapter/ReceiveQueue.h"
#include "tests/kernel/adapter/SerialLines.h"

#include <chrono>
#include <memory>
#include <optional>
#include <span>

namespace flashwriter::kernel {

// What one kind of adapter does in a way of its own: the requests that its driver makes, and how
// it hands bytes to the host.
class SerialChip {
public:
    SerialChip() = default;
    SerialChip(const SerialChip&) = delete;
    SerialChip& operator=(const SerialChip&) = delete;
    virtual ~SerialChip() = default;

    // A request that is not one of those that all devices know. data: what the host has sent along.
    // Gives what the host gets, which is empty when it asked for nothing; nothing at all: the
    // request is refused.
    virtual std::optional<Bytes> request(const SetupPacket& setup,
                                         std::span<const std::uint8_t> data, BoardTime now) = 0;

    // The speed that the host has set.
    virtual std::uint32_t bitsPerSecond() const = 0;

    // Zero for a chip that has none.
    virtual std::chrono::milliseconds latencyTimer() const = 0;

    virtual ReceiveQueue& queue() = 0;
};

// The lines must outlive the chip, but need not be there yet.
std::unique_ptr<SerialChip> makeChip(AdapterKind kind, SerialLines& lines);

} // namespace flashwriter::kernel
