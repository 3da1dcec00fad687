// The descriptors of each kind of adapter, byte by byte as they go over the bus.

#include "tests/kernel/adapter/DeviceDescription.h"

namespace flashwriter::kernel {

namespace {

const Bytes kCdcDevice{
    18,   1,    0x00, 0x02,       // device, USB 2.0
    0x02, 0,    0,    64,         // communications class, packets of 64 bytes for control
    0x09, 0x12, 0x01, 0x00,       // numbers that are free for tests
    0x00, 0x01, 1,    2,    3, 1, // version, the strings, one configuration
};

const Bytes kCdcConfiguration{
    9,    2,    67,   0,    2,           1,    0,
    0x80, 50, // configuration: 67 bytes, 2 interfaces, 100 mA from the bus
    9,    4,    0,    0,    1,           0x02, 0x02,
    1,    0,                                       // interface 0: control, one endpoint
    5,    0x24, 0x00, 0x10, 0x01,                  // communications class 1.10
    5,    0x24, 0x01, 0x00, 1,                     // no call management
    4,    0x24, 0x02, 0x06,                        // takes line coding, line state and BREAK
    5,    0x24, 0x06, 0,    1,                     // interface 0 controls interface 1
    7,    5,    0x82, 3,    8,           0,    16, // interrupt to the host: 8 bytes every 16 ms
    9,    4,    1,    0,    2,           0x0A, 0x00,
    0,    0,                                      // interface 1: data, two endpoints
    7,    5,    0x01, 2,    kBulkPacket, 0,    0, // bulk from the host
    7,    5,    0x81, 2,    kBulkPacket, 0,    0, // bulk to the host
};

// The driver tells the kinds of chip apart by the device's version.
const Bytes kFtdiDevice{
    18,   1,    0x00, 0x02,       // device, USB 2.0
    0,    0,    0,    64,         // a class of its own, packets of 64 bytes for control
    0x03, 0x04, 0x01, 0x60,       // the numbers that the driver looks for
    0x00, 0x06, 1,    2,    3, 1, // version, the strings, one configuration
};

const Bytes kFtdiConfiguration{
    9,    2,  32,   0, 1,           1,    0,
    0x80, 50, // configuration: 32 bytes, 1 interface, 100 mA from the bus
    9,    4,  0,    0, 2,           0xFF, 0xFF,
    0xFF, 2,                                 // interface 0: two endpoints
    7,    5,  0x81, 2, kBulkPacket, 0,    0, // bulk to the host
    7,    5,  0x02, 2, kBulkPacket, 0,    0, // bulk from the host
};

} // namespace

DeviceDescription describe(AdapterKind kind) {
    const bool cdc = kind == AdapterKind::cdcAcm;
    return {.device = cdc ? kCdcDevice : kFtdiDevice,
            .configuration = cdc ? kCdcConfiguration : kFtdiConfiguration,
            .strings = {"Flash Writer tests", "Emulated serial adapter", "0001"}};
}

} // namespace flashwriter::kernel
