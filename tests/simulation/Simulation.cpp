#include "tests/simulation/Simulation.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace flashwriter::simulation {

namespace {

std::atomic<Simulation*> theSimulation{nullptr};

// Far from the descriptors that a process has: used on a real one, it shows as a failure.
constexpr int FIRST_DESCRIPTOR = 1'000'000;

// Real time. A receive thread that is told to end finds out when a read returns.
constexpr auto READ_AT_MOST = std::chrono::microseconds(100);
constexpr auto READER_IS_DEAD = std::chrono::seconds(60);

[[noreturn]] void giveUp(const char* why) {
    static_cast<void>(std::fprintf(stderr, "simulation: %s\n", why));
    std::abort();
}

int failed(int error) {
    errno = error;
    return -1;
}

} // namespace

Simulation::Simulation(SimulatedPort& port, const ClockOptions& options, VirtualTime limit)
    : m_port(port), m_limit(limit), m_clock(options) {
    ::cfmakeraw(&m_attributes);
    ::cfsetspeed(&m_attributes, B9600);
    theSimulation = this;
}

Simulation::~Simulation() {
    theSimulation = nullptr;
}

Simulation* Simulation::current() {
    return theSimulation;
}

VirtualTime Simulation::now() const {
    const Lock lock(m_mutex);
    return m_clock.now();
}

std::uint32_t Simulation::openings() const {
    const Lock lock(m_mutex);
    return m_openings;
}

std::uint32_t Simulation::closings() const {
    const Lock lock(m_mutex);
    return m_closings;
}

std::uint32_t Simulation::strayCalls() const {
    const Lock lock(m_mutex);
    return m_strayCalls;
}

int Simulation::open() {
    const Lock lock(m_mutex);
    if (const int error = m_port.open(m_clock.now()); error != 0) {
        return failed(error);
    }
    if (m_descriptor != -1) {
        giveUp("the device was opened twice");
    }
    m_descriptor = FIRST_DESCRIPTOR + static_cast<int>(m_openings++);
    m_opener = std::this_thread::get_id();
    m_readerSeen = m_readerReads = m_hurry = false;
    return m_descriptor;
}

void Simulation::close(int descriptor) {
    const Lock lock(m_mutex);
    if (!isOpen(descriptor)) {
        return;
    }
    m_port.close(m_clock.now());
    m_descriptor = -1;
    ++m_closings;
}

ssize_t Simulation::read(int descriptor, std::uint8_t* bytes, std::size_t size) {
    Lock lock(m_mutex);
    if (!isOpen(descriptor)) {
        return failed(EBADF);
    }
    m_readerReads = m_readerSeen = true;
    m_forWriter.notify_one();
    m_forReader.wait_for(lock, READ_AT_MOST, [this] { return m_hurry || m_port.hasArrived(); });
    m_readerReads = false;
    const std::size_t count = m_port.take(bytes, size);
    return count > 0 ? static_cast<ssize_t>(count) : failed(EAGAIN);
}

ssize_t Simulation::write(int descriptor, std::span<const std::uint8_t> bytes) {
    Lock lock(m_mutex);
    if (!isOpen(descriptor)) {
        return failed(EBADF);
    }
    awaitReader(lock);
    const ssize_t written = m_port.write(bytes, m_clock.now());
    m_clock.noteWrite();
    handOver(lock);
    return written >= 0 ? written : failed(static_cast<int>(-written));
}

void Simulation::discard(int descriptor) {
    Lock lock(m_mutex);
    if (!isOpen(descriptor)) {
        return;
    }
    awaitReader(lock);
    m_port.discard(m_clock.now());
}

int Simulation::setSpeed(int descriptor, std::uint64_t bitsPerSecond) {
    Lock lock(m_mutex);
    if (!isOpen(descriptor)) {
        return failed(EBADF);
    }
    awaitReader(lock);
    const int error = m_port.setSpeed(bitsPerSecond, m_clock.now());
    return error == 0 ? 0 : failed(error);
}

int Simulation::lines(int descriptor, const board::LineRequest& request, std::uint32_t& bits) {
    Lock lock(m_mutex);
    if (!isOpen(descriptor)) {
        return failed(EBADF);
    }
    awaitReader(lock);
    const board::LineAnswer answer = m_port.lines(request, m_clock.now());
    handOver(lock);
    bits = answer.bits;
    return answer.error == 0 ? 0 : failed(answer.error);
}

void Simulation::readAttributes(int descriptor, termios& attributes) const {
    const Lock lock(m_mutex);
    if (descriptor == m_descriptor) {
        attributes = m_attributes;
    }
}

void Simulation::writeAttributes(int descriptor, const termios& attributes) {
    const Lock lock(m_mutex);
    if (!isOpen(descriptor)) {
        return;
    }
    m_attributes = attributes;
    if (::cfgetospeed(&attributes) == B115200) { // the one speed that the program sets like this
        m_port.setSpeed(115200, m_clock.now());
    }
}

std::uint64_t Simulation::readClock() {
    Lock lock(m_mutex);
    awaitReader(lock);
    m_clock.tick();
    if (m_clock.now() > m_limit) {
        giveUp("the write does not end");
    }
    if (m_descriptor != -1) {
        m_port.advance(m_clock.now());
        handOver(lock);
    }
    return m_clock.wallMilliseconds();
}

void Simulation::hurryReader() {
    {
        const Lock lock(m_mutex);
        m_hurry = true;
    }
    m_forReader.notify_one();
    std::this_thread::yield(); // the receive thread may be waiting for this very processor
}

void Simulation::sleep() {
    Lock lock(m_mutex);
    awaitReader(lock);
}

bool Simulation::isOpen(int descriptor) {
    const bool open = descriptor != -1 && descriptor == m_descriptor;
    m_strayCalls += open || descriptor == -1 ? 0 : 1;
    return open;
}

// The receive thread starts when the system likes, and begins by discarding what has arrived. Until
// it waits for bytes, the thread of the write does not get on.
void Simulation::awaitReader(Lock& lock) {
    if (m_descriptor != -1 && !m_readerSeen && std::this_thread::get_id() == m_opener) {
        waitForReader(lock, [this] { return m_readerSeen; });
    }
}

// Everything that has arrived gets into the receive buffer before the thread of the write goes on.
void Simulation::handOver(Lock& lock) {
    if (m_port.hasArrived()) {
        m_forReader.notify_one();
        waitForReader(lock, [this] { return m_readerReads && !m_port.hasArrived(); });
    }
}

template <class Condition>
void Simulation::waitForReader(Lock& lock, const Condition& condition) {
    if (!m_forWriter.wait_for(lock, READER_IS_DEAD, condition)) {
        giveUp("the receive thread does not read");
    }
}

} // namespace flashwriter::simulation
