#pragma once

#include "board/BoardTime.h"
#include "board/Protocol.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// A USB-serial adapter without hardware: the device that a host's USB stack meets, the link to the
// host, and the board behind it.
namespace flashwriter::kernel {

using board::BoardTime;
using board::Bytes;

// Of an endpoint's address.
inline bool isToHost(std::uint8_t address) {
    return (address & 0x80U) != 0;
}

// What became of a transfer, in the numbers of the redirection protocol.
enum class UsbStatus : std::uint8_t { success = 0, cancelled = 1, invalid = 2, stalled = 4 };

// A control transfer as the host begins it.
struct SetupPacket {
    std::uint8_t requestType = 0;
    std::uint8_t request = 0;
    std::uint16_t value = 0;
    std::uint16_t index = 0;
    std::uint16_t length = 0;

    // Both bytes that say which request it is, the type first.
    std::uint16_t kind() const {
        return static_cast<std::uint16_t>(requestType * 0x100U + request);
    }
};

// A bulk transfer that the device has done with, one way or another.
struct FinishedTransfer {
    std::uint64_t id = 0;
    std::uint8_t endpoint = 0; // its address
    UsbStatus status = UsbStatus::success;
    std::size_t length = 0; // bytes that went over, in either direction
    Bytes data;             // to the host only
};
using FinishedTransfers = std::vector<FinishedTransfer>;

} // namespace flashwriter::kernel
