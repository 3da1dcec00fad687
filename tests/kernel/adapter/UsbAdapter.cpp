#include "tests/kernel/adapter/UsbAdapter.h"

#include "tests/kernel/adapter/DeviceLoop.h"

#include <stdexcept>
#include <utility>

namespace flashwriter::kernel {

UsbAdapter::UsbAdapter(std::string socketPath) : m_socketPath(std::move(socketPath)) {}
UsbAdapter::~UsbAdapter() = default;

void UsbAdapter::plug(const UsbAdapterOptions& options) {
    unplug();
    m_running = std::make_unique<board::LoopThread<DeviceLoop>>(
        connectTo(m_socketPath), options.kind, options.board, options.looseAt);
}

void UsbAdapter::unplug() {
    if (m_running) {
        m_running->stop();
    }
}

std::uint32_t UsbAdapter::bitsPerSecond() const {
    return loop().look([this] { return loop().device().hostSpeed(); });
}

std::chrono::milliseconds UsbAdapter::latencyTimer() const {
    return loop().look([this] { return loop().device().latencyTimer(); });
}

std::size_t UsbAdapter::takenBeforeFrames() const {
    return loop().look([this] { return loop().device().takenBeforeFrames(); });
}

const DeviceLoop& UsbAdapter::loop() const {
    if (!m_running) {
        throw std::logic_error("the adapter has not been plugged in");
    }
    return m_running->loop();
}

const board::BoardLoop& UsbAdapter::board() const {
    return loop();
}

} // namespace flashwriter::kernel
