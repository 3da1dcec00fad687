// Takes the place of the program's serial devices, its clock and its sleep; see Simulation.h.
#include "serial/NSGetTime.h"
#include "serial/ReceiveThreadTicket.h"
#include "serial/platform/SerialDevice.h"
#include "tests/simulation/Simulation.h"

#include <cerrno>
#include <ctime>

namespace flashwriter {

using board::LineOperation;
using board::LineRequest;
using simulation::Simulation;

std::uint64_t NSGetTime::getTimeOfDay_msec() {
    return Simulation::current()->readClock();
}

namespace platform {

namespace {

int requestLines(int descriptor, LineOperation operation, std::uint32_t bits = 0) {
    std::uint32_t ignored = 0;
    return Simulation::current()->lines(descriptor, {operation, bits}, ignored);
}

} // namespace

int openDevice(const char* /*path*/) {
    return Simulation::current()->open();
}

void closeDevice(int descriptor) {
    Simulation::current()->close(descriptor);
}

ssize_t readDevice(int descriptor, std::uint8_t* bytes, std::size_t size) {
    return Simulation::current()->read(descriptor, bytes, size);
}

ssize_t writeDevice(int descriptor, const std::uint8_t* bytes, std::size_t count) {
    return Simulation::current()->write(descriptor, {bytes, count});
}

void discardPending(int descriptor) {
    Simulation::current()->discard(descriptor);
}

void readAttributes(int descriptor, termios& attributes) {
    Simulation::current()->readAttributes(descriptor, attributes);
}

void writeAttributes(int descriptor, const termios& attributes) {
    Simulation::current()->writeAttributes(descriptor, attributes);
}

int setBreak(int descriptor) {
    return requestLines(descriptor, LineOperation::startBreak);
}

int clearBreak(int descriptor) {
    return requestLines(descriptor, LineOperation::endBreak);
}

int readModemLines(int descriptor, std::int32_t& lines) {
    std::uint32_t bits = 0;
    const int result = Simulation::current()->lines(descriptor, {LineOperation::get, 0}, bits);
    if (result == 0) {
        lines = static_cast<std::int32_t>(bits);
    }
    return result;
}

int writeModemLines(int descriptor, std::int32_t lines) {
    return requestLines(descriptor, LineOperation::set, static_cast<std::uint32_t>(lines));
}

void startingAttributes(termios& /*attributes*/) {}

int setLineSpeed(int descriptor, std::uint64_t bitsPerSecond) {
    return Simulation::current()->setSpeed(descriptor, bitsPerSecond);
}

void requestLowLatency(int /*descriptor*/) {}

} // namespace platform
} // namespace flashwriter

using flashwriter::simulation::Simulation;

// The names by which the linker knows ReceiveThreadTicket::inUse().
#define IN_USE(prefix) prefix##_ZNK11flashwriter19ReceiveThreadTicket5inUseEv

extern "C" {
int __real_nanosleep(const timespec* rest, timespec* left);
bool IN_USE(__real_)(const flashwriter::ReceiveThreadTicket* ticket);

int __wrap_nanosleep(const timespec* rest, timespec* left) {
    if (Simulation::current() == nullptr) {
        return __real_nanosleep(rest, left);
    }
    Simulation::current()->sleep();
    return 0;
}

// Closing asks this again and again until the receive thread has ended, which may need this very
// processor for it.
bool IN_USE(__wrap_)(const flashwriter::ReceiveThreadTicket* ticket) {
    const bool inUse = IN_USE(__real_)(ticket);
    if (inUse && Simulation::current() != nullptr) {
        Simulation::current()->hurryReader();
    }
    return inUse;
}
}
