#pragma once

#include "tests/kernel/adapter/UsbDevice.h"
#include "tests/unit/board/HostSide.h"

#include <chrono>
#include <optional>

namespace flashwriter::kernel {

using namespace std::chrono_literals;

// A host that makes the transfers that a test asks for, by a clock that only moves when told to.
class DeviceHost {
public:
    explicit DeviceHost(AdapterKind kind, const board::BoardOptions& options = {})
        : m_device(kind, options, m_now) {}

    UsbDevice& device() { return m_device; }
    board::TargetMode mode() const { return m_device.board().target().mode(); }
    BoardTime now() const { return m_now; }

    void wait(BoardTime span) {
        m_now += span;
        m_device.advance(m_now);
    }

    // False when it is refused.
    bool tell(std::uint16_t kind, std::uint16_t value, const Bytes& data = {},
              std::uint16_t index = 0) {
        return m_device.control(setup(kind, value, data.size(), index), data, m_now).has_value();
    }
    std::optional<Bytes> ask(std::uint16_t kind, std::uint16_t value, std::size_t length,
                             std::uint16_t index = 0) {
        return m_device.control(setup(kind, value, length, index), {}, m_now);
    }

    // Begins a transfer and gives its number.
    std::uint64_t askForBytes(std::size_t length, std::uint8_t endpoint = 0x81) {
        m_device.askForBytes(++m_transfers, endpoint, length, m_now);
        return m_transfers;
    }
    std::uint64_t handBytes(const Bytes& bytes, std::uint8_t endpoint) {
        m_device.handBytes(++m_transfers, endpoint, bytes, m_now);
        return m_transfers;
    }

    // The transfer, if it has been finished.
    std::optional<FinishedTransfer> finished(std::uint64_t id) {
        for (FinishedTransfer& transfer : m_device.takeFinished()) {
            m_finished.push_back(std::move(transfer));
        }
        for (const FinishedTransfer& transfer : m_finished) {
            if (transfer.id == id) {
                return transfer;
            }
        }
        return std::nullopt;
    }

private:
    static SetupPacket setup(std::uint16_t kind, std::uint16_t value, std::size_t length,
                             std::uint16_t index) {
        return {.requestType = static_cast<std::uint8_t>(kind >> 8U),
                .request = static_cast<std::uint8_t>(kind & 0xFFU),
                .value = value,
                .index = index,
                .length = static_cast<std::uint16_t>(length)};
    }

    BoardTime m_now = 1h;
    UsbDevice m_device;
    std::uint64_t m_transfers = 0;
    FinishedTransfers m_finished;
};

inline board::BoardOptions with(const char* fault) {
    board::BoardOptions options;
    options.pace = false;
    options.faults = {board::parseFault(fault)};
    return options;
}

} // namespace flashwriter::kernel
