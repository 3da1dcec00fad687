#pragma once

#include "tests/kernel/adapter/UsbTypes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace flashwriter::kernel {

// By which driver of the Linux kernel the adapter wants to be driven.
enum class AdapterKind : std::uint8_t { cdcAcm, ftdiSio };

struct InterfaceDescription {
    std::uint8_t number = 0;
    std::uint8_t classCode = 0;
    std::uint8_t subclass = 0;
    std::uint8_t protocol = 0;
};

struct EndpointDescription {
    std::uint8_t address = 0;
    std::uint8_t type = 0; // 2: bulk, 3: interrupt
    std::uint16_t packetSize = 0;
    std::uint8_t interval = 0; // milliseconds
    std::uint8_t interface = 0;
};

// What the device tells of itself, in the bytes that the host asks for. It works at full speed.
struct DeviceDescription {
    Bytes device;
    Bytes configuration;              // the only one, with everything that belongs to it
    std::vector<std::string> strings; // ASCII, from index 1 on

    // Read from the configuration.
    std::vector<InterfaceDescription> interfaces() const;
    std::vector<EndpointDescription> endpoints() const;

    std::uint16_t vendor() const;
    std::uint16_t product() const;
    std::uint16_t version() const; // binary-coded decimal
};

inline constexpr std::uint8_t kBulk = 2;
inline constexpr std::uint8_t kInterrupt = 3;
inline constexpr std::size_t kBulkPacket = 64; // bytes

DeviceDescription describe(AdapterKind kind);

// The answer to GET_DESCRIPTOR with this wValue, in full; nothing: there is no such descriptor.
std::optional<Bytes> descriptor(const DeviceDescription& description, std::uint16_t value);

} // namespace flashwriter::kernel
