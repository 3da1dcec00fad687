#include "board/VirtualBoard.h"

#include "board/EventLoop.h"

#include <stdexcept>

namespace flashwriter::board {

VirtualBoard::VirtualBoard() = default;
VirtualBoard::~VirtualBoard() = default;

void VirtualBoard::start(const BoardOptions& options) {
    stop();
    m_running = std::make_unique<LoopThread<EventLoop>>(options);
}

void VirtualBoard::stop() {
    if (m_running) {
        m_running->stop();
    }
}

const EventLoop& VirtualBoard::loop() const {
    if (!m_running) {
        throw std::logic_error("the virtual board has not been started");
    }
    return m_running->loop();
}

const BoardLoop& VirtualBoard::board() const {
    return loop();
}

std::string VirtualBoard::portPath() const {
    return loop().portPath();
}

} // namespace flashwriter::board
