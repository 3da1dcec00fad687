#pragma once

#include "tests/kernel/adapter/BulkPipes.h"
#include "tests/kernel/adapter/DeviceDescription.h"
#include "tests/kernel/adapter/SerialChip.h"
#include "tests/kernel/adapter/SerialLines.h"
#include "tests/kernel/adapter/UsbTypes.h"

#include "board/Adapter.h"
#include "board/HostPort.h"

#include <memory>
#include <optional>
#include <span>

namespace flashwriter::kernel {

// The adapter as a USB device, with the board behind it. Like the board it is told the time, has no
// thread, and is not synchronised.
class UsbDevice : private board::HostPort {
public:
    // Throws std::invalid_argument for options that no board has.
    UsbDevice(AdapterKind kind, const board::BoardOptions& options, BoardTime now);

    const DeviceDescription& description() const { return m_description; }

    // What the host gets, which is empty when it asked for nothing; nothing at all: refused.
    std::optional<Bytes> control(const SetupPacket& setup, std::span<const std::uint8_t> data,
                                 BoardTime now);

    // False for a configuration, or a setting of an interface, that there is not.
    bool configure(std::uint8_t configuration);
    std::uint8_t configuration() const { return m_configuration; }
    bool hasSetting(std::uint8_t interface, std::uint8_t setting) const;

    // The host begins a transfer with an endpoint; takeFinished() will give it once, sooner or
    // later, unless the adapter is stuck.
    void askForBytes(std::uint64_t id, std::uint8_t endpoint, std::size_t length, BoardTime now);
    void handBytes(std::uint64_t id, std::uint8_t endpoint, Bytes bytes, BoardTime now);
    void cancel(std::uint64_t id) { m_pipes.cancel(id); }
    FinishedTransfers takeFinished();

    // A reset of the bus.
    void reset();

    // Lets everything happen that was due until now. nextDeadline() says when to call at the
    // latest.
    void advance(BoardTime now);
    std::optional<BoardTime> nextDeadline() const;

    bool hasEndpoint(std::uint8_t address, std::uint8_t type) const;

    const board::Adapter& board() const { return m_board; }
    // How many bytes of the board the host has taken before its first frame.
    std::size_t takenBeforeFrames() const { return m_takenBeforeFrames; }
    std::uint32_t hostSpeed() const { return m_chip->bitsPerSecond(); }
    std::chrono::milliseconds latencyTimer() const { return m_chip->latencyTimer(); }

private:
    std::uint32_t bitsPerSecond() override { return m_chip->bitsPerSecond(); }
    std::size_t send(std::span<const std::uint8_t> bytes) override;
    bool receivesWhileClosed() const override { return true; }
    void unplug() override {} // seen by the board's own word for it
    void jam(std::size_t room) override { m_pipes.jam(room); }

    void refuse(std::uint64_t id, std::uint8_t endpoint);

    DeviceDescription m_description;
    SerialLines m_lines;
    std::unique_ptr<SerialChip> m_chip;
    BulkPipes m_pipes;
    FinishedTransfers m_refused;
    std::uint8_t m_configuration = 0;
    std::size_t m_takenBeforeFrames = 0;
    board::Adapter m_board; // last: it may speak to its port at once
};

} // namespace flashwriter::kernel
