#pragma once

#include "tests/kernel/adapter/RedirLink.h"
#include "tests/kernel/adapter/UsbDevice.h"

#include "board/BoardLoop.h"

#include <string>

namespace flashwriter::kernel {

// Lets an adapter with its board live on a connection to a host.
class DeviceLoop : public board::BoardLoop {
public:
    // The socket is connected to the host, and non-blocking. looseAt: see UsbAdapterOptions.
    DeviceLoop(board::Descriptor socket, AdapterKind kind, const board::BoardOptions& options,
               std::string looseAt);

    const board::Adapter& adapter() const override { return m_device.board(); }

    // Only to be looked at in a question.
    const UsbDevice& device() const { return m_device; }

private:
    void step() override;
    void leave() override { m_link.disconnect(); }
    void addTo(std::vector<pollfd>& entries) const override;
    std::optional<board::BoardTime> nextDeadline() const override;

    bool isLoose();

    UsbDevice m_device;
    RedirLink m_link;
    std::string m_looseAt;
    std::size_t m_read = 0; // records of the transcript
};

} // namespace flashwriter::kernel
