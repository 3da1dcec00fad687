#include "board/PseudoTerminal.h"

#include "board/LineSpeed.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
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

// The system moves bytes between its buffers in the background. It has nothing more to move when
// the last of them holds this much, which is all that fits it.
bool settled(int master) {
    constexpr int kLastBuffer = 4095;
    int waiting = 0;
    return ioctl(master, FIONREAD, &waiting) == 0 && waiting >= kLastBuffer;
}

// Writes pieces of this size until they are refused for good, or one more would pass the limit.
// Gives the number of bytes.
std::size_t fillWith(std::size_t piece, int master, int port, std::size_t limit) {
    static constexpr char kZeros[16] = {};
    constexpr int kPatience = 1000; // of a millisecond each, should the system do as it never did
    std::size_t count = 0;
    int refusals = 0;
    bool wasSettled = false;
    while (limit - count >= piece && refusals < kPatience) {
        if (write(port, kZeros, piece) > 0) {
            count += piece;
            wasSettled = false;
            continue;
        }
        if (wasSettled) {
            break;
        }
        ++refusals;
        wasSettled = settled(master);
        if (!wasSettled) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    return count;
}

// Larger pieces first for the sake of speed: the sizes of the system's buffers are multiples of 16,
// so no such piece is ever taken in part.
std::size_t fill(int master, int port, std::size_t limit) {
    const std::size_t count = fillWith(16, master, port, limit);
    return count + fillWith(1, master, port, limit - count);
}

// Filled to the brim and emptied, the buffers of any two pseudo-terminals are alike, whatever went
// through them before.
void level(int master, int port) {
    fill(master, port, SIZE_MAX);
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
    return fill(other.master(), port.get(), SIZE_MAX);
}

void PseudoTerminal::jam(std::size_t capacity, std::size_t room) {
    const Descriptor port = openPort(m_path);
    level(m_master.get(), port.get());
    fill(m_master.get(), port.get(), capacity > room ? capacity - room : 0);
}

} // namespace flashwriter::board
