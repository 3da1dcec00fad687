#include "board/VirtualBoard.h"

#include "board/EventLoop.h"

#include <stdexcept>
#include <thread>

namespace flashwriter::board {

// A loop and the thread that runs it.
class VirtualBoard::Running {
public:
    explicit Running(const BoardOptions& options)
        : m_loop(options), m_thread([this] { m_loop.run(); }) {}
    ~Running() { stop(); }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    void stop() {
        if (m_thread.joinable()) {
            m_loop.askToStop();
            m_thread.join();
        }
    }

    const EventLoop& loop() const { return m_loop; }

private:
    EventLoop m_loop;
    std::thread m_thread;
};

VirtualBoard::VirtualBoard() = default;
VirtualBoard::~VirtualBoard() = default;

void VirtualBoard::start(const BoardOptions& options) {
    stop();
    m_running = std::make_unique<Running>(options);
}

void VirtualBoard::stop() {
    if (m_running) {
        m_running->stop();
    }
}

const VirtualBoard::Running& VirtualBoard::running() const {
    if (!m_running) {
        throw std::logic_error("the virtual board has not been started");
    }
    return *m_running;
}

std::string VirtualBoard::portPath() const {
    return running().loop().portPath();
}

Transcript VirtualBoard::transcript() const {
    return running().loop().look([](const Adapter& board) { return board.transcript(); });
}

std::size_t VirtualBoard::violations() const {
    return running().loop().look([](const Adapter& board) { return board.violations(); });
}

TargetMode VirtualBoard::mode() const {
    return running().loop().look([](const Adapter& board) { return board.target().mode(); });
}

Bytes VirtualBoard::codeFlash() const {
    return running().loop().look(
        [](const Adapter& board) { return board.target().flash().code(); });
}

Bytes VirtualBoard::dataFlash() const {
    return running().loop().look(
        [](const Adapter& board) { return board.target().flash().data(); });
}

std::uint32_t VirtualBoard::closings() const {
    return running().loop().look([](const Adapter& board) { return board.closings(); });
}

std::uint32_t VirtualBoard::sessions() const {
    return running().loop().look([](const Adapter& board) { return board.sessions(); });
}

bool VirtualBoard::unplugged() const {
    return running().loop().look([](const Adapter& board) { return board.unplugged(); });
}

bool VirtualBoard::waitForMode(TargetMode mode, std::chrono::milliseconds patience) const {
    return running().loop().waitUntil(
        [mode](const Adapter& board) { return board.target().mode() == mode; }, patience);
}

bool VirtualBoard::waitForClosings(std::uint32_t count, std::chrono::milliseconds patience) const {
    return running().loop().waitUntil(
        [count](const Adapter& board) { return board.closings() >= count; }, patience);
}

} // namespace flashwriter::board
