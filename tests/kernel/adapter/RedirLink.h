#pragma once

#include "tests/kernel/adapter/RedirEnd.h"
#include "tests/kernel/adapter/UsbDevice.h"

#include <string>

namespace flashwriter::kernel {

// Takes a device to a host that is another process: announces it, hands the host's transfers to it
// and its answers to the host.
class RedirLink : public RedirEnd {
public:
    // The device must outlive the link.
    RedirLink(board::Descriptor socket, UsbDevice& device);

    // Sends what the device has finished.
    void answer();

    // Takes the device away from the host.
    void disconnect();

private:
    struct Callbacks; // of the parser

    static void setCallbacks(usbredirparser& parser);

    void announce();
    void sendDescription();

    UsbDevice& m_device;
    bool m_announced = false;
};

// A connection to the socket of that name, non-blocking. Waits a while for the one who listens
// there; throws std::system_error when there is none.
board::Descriptor connectTo(const std::string& path);

} // namespace flashwriter::kernel
