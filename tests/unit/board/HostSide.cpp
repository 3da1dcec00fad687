#include "HostSide.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <thread>

#include <asm/termbits.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace flashwriter::board {

HostSide::HostSide(const std::string& path)
    : m_fd(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    if (m_fd < 0) {
        throw std::runtime_error(path + ": " + std::strerror(errno));
    }
    setSpeed(kSpeeds[0]);
}

HostSide::~HostSide() {
    close();
}

void HostSide::close() {
    if (m_fd >= 0) {
        ::close(m_fd);
        m_fd = -1;
    }
}

void HostSide::setSpeed(std::uint32_t bitsPerSecond) const {
    termios2 settings{};
    if (ioctl(m_fd, TCGETS2, &settings) != 0) {
        throw std::runtime_error("TCGETS2");
    }
    settings.c_cflag &= ~static_cast<tcflag_t>(CBAUD);
    settings.c_cflag |= BOTHER | CSTOPB;
    settings.c_ispeed = bitsPerSecond;
    settings.c_ospeed = bitsPerSecond;
    if (ioctl(m_fd, TCSETS2, &settings) != 0) {
        throw std::runtime_error("TCSETS2");
    }
}

int HostSide::modemLines() const {
    int bits = 0;
    return ioctl(m_fd, TIOCMGET, &bits) == 0 ? bits : -1;
}

bool HostSide::setDtr(bool on) const {
    int bits = TIOCM_DTR;
    return ioctl(m_fd, on ? TIOCMBIS : TIOCMBIC, &bits) == 0;
}

bool HostSide::setBreak(bool on) const {
    return ioctl(m_fd, on ? TIOCSBRK : TIOCCBRK, nullptr) == 0;
}

long HostSide::send(const Bytes& bytes) const {
    return write(m_fd, bytes.data(), bytes.size());
}

Bytes HostSide::receive(std::size_t count, std::chrono::milliseconds patience) const {
    const auto end = std::chrono::steady_clock::now() + patience;
    Bytes bytes;
    while (bytes.size() < count) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
        pollfd entry{.fd = m_fd, .events = POLLIN, .revents = 0};
        if (left.count() <= 0 || poll(&entry, 1, static_cast<int>(left.count())) <= 0) {
            break;
        }
        Bytes chunk(count - bytes.size());
        const auto got = read(m_fd, chunk.data(), chunk.size());
        if (got <= 0) {
            break;
        }
        bytes.insert(bytes.end(), chunk.begin(), chunk.begin() + got);
    }
    return bytes;
}

Bytes HostSide::exchange(const Bytes& frame, std::size_t count) const {
    send(frame);
    return receive(count);
}

void HostSide::enterProgrammingMode(bool inverted) const {
    setDtr(!inverted);
    setBreak(true);
    setDtr(inverted);
    setBreak(false);
    send({0x00});
}

bool HostSide::connect(std::uint8_t speedIndex, bool inverted) const {
    enterProgrammingMode(inverted);
    if (exchange(commandFrame({0x9A, speedIndex, 33}), 5) != kAcknowledged) {
        return false;
    }
    setSpeed(kSpeeds[speedIndex]);
    return exchange(kResetFrame, 5) == kAcknowledged;
}

namespace {

// Counts down from 0 instead of negating a sum.
std::uint8_t sumOf(const Bytes& frame) {
    std::uint8_t sum = 0;
    for (std::size_t i = 1; i < frame.size(); ++i) {
        sum = static_cast<std::uint8_t>(sum - frame[i]);
    }
    return sum;
}

Bytes assemble(std::uint8_t start, const Bytes& contents, std::uint8_t end) {
    Bytes frame;
    frame.reserve(contents.size() + 4);
    frame.push_back(start);
    frame.push_back(static_cast<std::uint8_t>(contents.size() & 0xFFU));
    frame.insert(frame.end(), contents.begin(), contents.end());
    frame.push_back(sumOf(frame));
    frame.push_back(end);
    return frame;
}

} // namespace

Bytes commandFrame(const Bytes& commandAndParameters) {
    return assemble(0x01, commandAndParameters, 0x03);
}

Bytes dataFrame(const Bytes& data, bool last) {
    return assemble(0x02, data, last ? 0x03 : 0x17);
}

Bytes withAddress(Bytes bytes, std::uint32_t address) {
    for (unsigned shift = 0; shift < 24; shift += 8) {
        bytes.push_back(static_cast<std::uint8_t>((address >> shift) & 0xFFU));
    }
    return bytes;
}

} // namespace flashwriter::board
