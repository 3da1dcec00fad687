// The one door through which the program reaches a serial device. Calls that a signal interrupts
// are made again here and nowhere else. Results are those of the system calls behind them: -1 and
// errno for a failure.
#pragma once

#include <termios.h>

#include <cstddef>
#include <cstdint>
#include <sys/types.h>

namespace flashwriter::platform {

// Opens a character device for reading and writing, without making it the controlling terminal and
// without ever blocking. Anything else (a file, a directory, a pipe) is refused with ENOTTY: what
// is written to a port must not end up in somebody's file.
int openDevice(const char* path);
// Throws away what the device has not taken half a second later: the system would wait for that.
void closeDevice(int descriptor);

ssize_t readDevice(int descriptor, std::uint8_t* bytes, std::size_t size);
ssize_t writeDevice(int descriptor, const std::uint8_t* bytes, std::size_t count);

// Discards what is pending in both directions.
void discardPending(int descriptor);

// The attributes to start from: what the device reports, bridged where a system reports something
// that the program's callers do not expect (see startingAttributes below).
void readAttributes(int descriptor, termios& attributes);
void writeAttributes(int descriptor, const termios& attributes);

// Fails with ETIMEDOUT when the device has not taken what was sent before half a second later.
int setBreak(int descriptor);
int clearBreak(int descriptor);
int readModemLines(int descriptor, std::int32_t& lines);
int writeModemLines(int descriptor, std::int32_t lines);

// What differs from system to system: one file for each defines these five.

// Replaces attributes under which the device would carry no binary data; leaves all others alone.
void startingAttributes(termios& attributes);
// Sets both directions to any rate in bits per second. Fails when the device ends up at another.
int setLineSpeed(int descriptor, std::uint64_t bitsPerSecond);
// Asks the driver not to hold short packets back. Best effort.
void requestLowLatency(int descriptor);

// Whether something that was written has not gone out, as far as the system knows.
bool isOutputPending(int descriptor);
// Closes without waiting for output that does not leave.
void closeAtOnce(int descriptor);

} // namespace flashwriter::platform
