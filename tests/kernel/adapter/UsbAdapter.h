#pragma once

#include "tests/kernel/adapter/DeviceDescription.h"

#include "board/BoardOptions.h"
#include "board/BoardViews.h"
#include "board/LoopThread.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace flashwriter::kernel {

class DeviceLoop;

struct UsbAdapterOptions {
    AdapterKind kind = AdapterKind::cdcAcm;
    board::BoardOptions board;
    // The adapter comes loose when the board's transcript says this in one of its meanings, and
    // right after the host's request that led to it was answered; empty: it does not.
    std::string looseAt{};
};

// A USB-serial adapter with a virtual board behind it, for a host that takes USB devices over a
// socket. It runs on a thread of its own, which sleeps whenever there is nothing to do.
//
// All operations may be called from any thread, except that plug(), unplug() and destruction must
// not overlap each other. Everything that can be asked for stays valid after unplug(), until the
// next plug(); before the first plug() there is nothing, and asking throws std::logic_error.
class UsbAdapter : public board::BoardViews {
public:
    // The name of the socket on which the host listens.
    explicit UsbAdapter(std::string socketPath);
    ~UsbAdapter() override; // unplugs it

    // Powers a new board up and plugs its adapter in; one that is plugged in is unplugged first.
    // The host has not looked at it yet when this returns. Throws std::system_error when nobody
    // listens for 10 s, and std::invalid_argument for options that no board has.
    void plug(const UsbAdapterOptions& options);

    // The device is gone for the host. Does nothing when it is already.
    void unplug();

    // As the host has set them. The latency timer is zero with an adapter that has none.
    std::uint32_t bitsPerSecond() const;
    std::chrono::milliseconds latencyTimer() const;

    // How many bytes of the board the host has taken before its first frame.
    std::size_t takenBeforeFrames() const;

private:
    const DeviceLoop& loop() const;
    const board::BoardLoop& board() const override;

    std::string m_socketPath;
    std::unique_ptr<board::LoopThread<DeviceLoop>> m_running;
};

} // namespace flashwriter::kernel
