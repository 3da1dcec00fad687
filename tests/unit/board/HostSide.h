#pragma once

#include "board/Protocol.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace flashwriter::board {

// A raw client of a serial port, as small as it can be: what the tests of the virtual board use in
// place of the program.
class HostSide {
public:
    // Opens the port at 115200 bits per second, 8 data and 2 stop bits. Throws std::runtime_error.
    explicit HostSide(const std::string& path);
    ~HostSide();
    HostSide(const HostSide&) = delete;
    HostSide& operator=(const HostSide&) = delete;

    int fd() const { return m_fd; }
    void close();

    // Any number of bits per second.
    void setSpeed(std::uint32_t bitsPerSecond) const;

    // False when the system refuses; errno says why.
    bool setDtr(bool on) const;
    bool setBreak(bool on) const;
    int modemLines() const; // TIOCM_… bits, or -1

    // What write() returns.
    long send(const Bytes& bytes) const;

    // Waits for so many bytes; gives fewer when the time is over or the port is gone.
    Bytes receive(std::size_t count,
                  std::chrono::milliseconds patience = std::chrono::seconds(20)) const;

    // Sends the frame and waits for a reply of so many bytes.
    Bytes exchange(const Bytes& frame, std::size_t count) const;

    // Reset with BREAK, release, zero byte.
    void enterProgrammingMode(bool inverted = false) const;

    // All of mode entry up to the Reset command, at one of the four speeds. False when a reply is
    // not an ACK.
    bool connect(std::uint8_t speedIndex, bool inverted = false) const;

private:
    int m_fd = -1;
};

// Frames as a host builds them; the sums are worked out here by another road than the board's.
Bytes commandFrame(const Bytes& commandAndParameters);
Bytes dataFrame(const Bytes& data, bool last);

// Three bytes, low byte first, behind what is there.
Bytes withAddress(Bytes bytes, std::uint32_t address);

inline const Bytes kAcknowledged{0x02, 0x01, 0x06, 0xF9, 0x03};
inline const Bytes kDataAcknowledged{0x02, 0x02, 0x06, 0x06, 0xF2, 0x03};
inline const Bytes kResetFrame{0x01, 0x01, 0x00, 0xFF, 0x03};

} // namespace flashwriter::board
