#pragma once

#include <cstdint>
#include <cstdio>

#include <sys/socket.h>
#include <sys/types.h>
#include <sys/un.h>

// What passes between a program that drives the lines of a virtual board's port and the board: one
// request, one answer, over a sequenced-packet socket that the board listens on. The socket's name
// is abstract (nothing in the file system) and made of the port's device numbers, so each side can
// work it out by itself and several boards stand side by side.
namespace flashwriter::board {

enum class LineOperation : std::uint32_t {
    get = 1,    // which modem lines are on
    set,        // bits: exactly these are on
    switchOn,   // bits: these too
    switchOff,  // bits: these no more
    startBreak, // hold the line low
    endBreak,
};

struct LineRequest {
    LineOperation operation = LineOperation::get;
    std::uint32_t bits = 0; // TIOCM_… bits
};

struct LineAnswer {
    std::int32_t error = 0; // an errno value, 0 for success
    std::uint32_t bits = 0; // the lines that are on, after get
};

// The address of the board behind the port with these numbers (of stat(): the device that holds the
// port's node, and the port's minor number). Gives its length for bind() and connect().
inline socklen_t lineAddress(sockaddr_un& address, dev_t holder, unsigned minor) noexcept {
    address = {};
    address.sun_family = AF_UNIX;
    // The leading zero byte makes the name an abstract one.
    const int length = std::snprintf(address.sun_path + 1, sizeof address.sun_path - 1,
                                     "flash-writer/virtual-board/lines/%llx/%u",
                                     static_cast<unsigned long long>(holder), minor);
    return static_cast<socklen_t>(sizeof address.sun_family + 1 + static_cast<std::size_t>(length));
}

} // namespace flashwriter::board
