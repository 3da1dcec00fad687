#include "board/PseudoTerminal.h"

#include "board/LineSpeed.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>

namespace flashwriter::board {

namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

Descriptor openPort(const std::string& path) {
    return Descriptor(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
}

Descriptor openMaster() {
    Descriptor master(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!master.valid() || grantpt(master.get()) != 0 || unlockpt(master.get()) != 0) {
        fail("cannot make a pseudo-terminal");
    }
    return master;
}

std::string portPathOf(int master) {
    char path[64];
    if (ptsname_r(master, path, sizeof path) != 0) {
        fail("cannot name the pseudo-terminal's port");
    }
    return path;
}

// Writes until the buffers take no more or the limit is reached; gives the number of bytes. The
// pieces are so small that the system's buffers, of a multiple of their size, are filled evenly.
std::size_t fill(int port, std::size_t limit) {
    static constexpr char kPiece[16] = {};
    constexpr int kPatience = 3; // the system moves bytes between its buffers in the background
    std::size_t count = 0;
    int refusals = 0;
    while (count < limit && refusals < kPatience) {
        const bool small = refusals > 0 || limit - count < sizeof kPiece;
        const ssize_t sent = write(port, kPiece, small ? 1 : sizeof kPiece);
        if (sent > 0) {
            count += static_cast<std::size_t>(sent);
            refusals = 0;
        } else {
            ++refusals;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    return count;
}

// Filled to the brim and emptied, the buffers of any two pseudo-terminals are alike, whatever went
// through them before.
void level(int master, int port) {
    fill(port, SIZE_MAX);
    tcflush(master, TCIFLUSH);
}

} // namespace

PseudoTerminal::PseudoTerminal() : m_master(openMaster()), m_path(portPathOf(m_master.get())) {
    // Opening and closing the port once makes "nobody has it open" visible on the master.
    const Descriptor port = openPort(m_path);
    termios settings{};
    if (!port.valid() || tcgetattr(port.get(), &settings) != 0) {
        fail("cannot open the pseudo-terminal's port");
    }
    cfmakeraw(&settings);
    if (tcsetattr(port.get(), TCSANOW, &settings) != 0) {
        fail("cannot make the pseudo-terminal raw");
    }
}

bool PseudoTerminal::hungUp() const {
    pollfd entry{.fd = m_master.get(), .events = 0, .revents = 0};
    return poll(&entry, 1, 0) == 1 && (entry.revents & POLLHUP) != 0;
}

std::uint32_t PseudoTerminal::bitsPerSecond() const {
    return readLineSpeed(m_master.get());
}

Bytes PseudoTerminal::receive(std::size_t limit) {
    Bytes bytes(limit);
    const ssize_t got = read(m_master.get(), bytes.data(), bytes.size());
    bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return bytes;
}

std::size_t PseudoTerminal::send(std::span<const std::uint8_t> bytes) {
    const ssize_t sent = write(m_master.get(), bytes.data(), bytes.size());
    return sent > 0 ? static_cast<std::size_t>(sent) : 0;
}

std::size_t PseudoTerminal::measureCapacity() {
    const PseudoTerminal other;
    const Descriptor port = openPort(other.path());
    level(other.master(), port.get());
    return fill(port.get(), SIZE_MAX);
}

void PseudoTerminal::jam(std::size_t capacity, std::size_t room) {
    const Descriptor port = openPort(m_path);
    level(m_master.get(), port.get());
    fill(port.get(), capacity > room ? capacity - room : 0);
}

} // namespace flashwriter::board
