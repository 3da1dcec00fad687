#include "tests/kernel/adapter/StandardRequests.h"

namespace flashwriter::kernel {

namespace {

constexpr std::uint16_t kGetDescriptor = 0x8006;
constexpr std::uint16_t kStatusOfDevice = 0x8000;
constexpr std::uint16_t kStatusOfInterface = 0x8100;
constexpr std::uint16_t kStatusOfEndpoint = 0x8200;
constexpr std::uint16_t kClearEndpointFeature = 0x0201; // its only feature is to be halted

} // namespace

bool isStandard(const SetupPacket& setup) {
    return (setup.requestType & 0x60U) == 0;
}

std::optional<Bytes> standardRequest(const DeviceDescription& description,
                                     const SetupPacket& setup) {
    switch (setup.kind()) {
    case kGetDescriptor:
        return descriptor(description, setup.value);
    case kStatusOfDevice:
    case kStatusOfInterface:
    case kStatusOfEndpoint:
        return Bytes{0, 0}; // powered by the bus, nothing is halted
    case kClearEndpointFeature:
        return Bytes{};
    default:
        return std::nullopt;
    }
}

} // namespace flashwriter::kernel
