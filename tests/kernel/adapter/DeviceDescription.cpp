#include "tests/kernel/adapter/DeviceDescription.h"

namespace flashwriter::kernel {

namespace {

constexpr std::uint8_t kDeviceType = 1;
constexpr std::uint8_t kConfigurationType = 2;
constexpr std::uint8_t kStringType = 3;
constexpr std::uint8_t kInterfaceType = 4;
constexpr std::uint8_t kEndpointType = 5;

std::uint16_t wordAt(const Bytes& bytes, std::size_t at) {
    return static_cast<std::uint16_t>(bytes.at(at) + bytes.at(at + 1) * 0x100U);
}

// Gives each descriptor of a type, one after the other, to the function.
template <typename Function>
void forEach(const Bytes& configuration, Function function) {
    for (std::size_t at = 0; at < configuration.size(); at += configuration[at]) {
        function(configuration.at(at + 1), at);
    }
}

Bytes stringDescriptor(const std::string& text) {
    Bytes bytes{static_cast<std::uint8_t>(2 + 2 * text.size()), kStringType};
    for (const char letter : text) {
        bytes.push_back(static_cast<std::uint8_t>(letter));
        bytes.push_back(0);
    }
    return bytes;
}

std::optional<Bytes> stringAt(const DeviceDescription& description, std::size_t index) {
    if (index == 0) {
        return Bytes{4, kStringType, 0x09, 0x04}; // the languages: English
    }
    if (index > description.strings.size()) {
        return std::nullopt;
    }
    return stringDescriptor(description.strings[index - 1]);
}

} // namespace

std::vector<InterfaceDescription> DeviceDescription::interfaces() const {
    std::vector<InterfaceDescription> found;
    forEach(configuration, [&](std::uint8_t type, std::size_t at) {
        if (type == kInterfaceType) {
            found.push_back({.number = configuration.at(at + 2),
                             .classCode = configuration.at(at + 5),
                             .subclass = configuration.at(at + 6),
                             .protocol = configuration.at(at + 7)});
        }
    });
    return found;
}

std::vector<EndpointDescription> DeviceDescription::endpoints() const {
    std::vector<EndpointDescription> found;
    std::uint8_t interface = 0;
    forEach(configuration, [&](std::uint8_t type, std::size_t at) {
        if (type == kInterfaceType) {
            interface = configuration.at(at + 2);
        } else if (type == kEndpointType) {
            found.push_back({.address = configuration.at(at + 2),
                             .type = configuration.at(at + 3),
                             .packetSize = wordAt(configuration, at + 4),
                             .interval = configuration.at(at + 6),
                             .interface = interface});
        }
    });
    return found;
}

std::uint16_t DeviceDescription::vendor() const {
    return wordAt(device, 8);
}

std::uint16_t DeviceDescription::product() const {
    return wordAt(device, 10);
}

std::uint16_t DeviceDescription::version() const {
    return wordAt(device, 12);
}

std::optional<Bytes> descriptor(const DeviceDescription& description, std::uint16_t value) {
    const auto index = static_cast<std::uint8_t>(value & 0xFFU);
    switch (value >> 8U) {
    case kDeviceType:
        return description.device;
    case kConfigurationType:
        return index == 0 ? std::optional(description.configuration) : std::nullopt;
    case kStringType:
        return stringAt(description, index);
    default:
        return std::nullopt;
    }
}

} // namespace flashwriter::kernel
