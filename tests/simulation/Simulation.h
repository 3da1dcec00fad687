// A world in which the program's serial device is simulated and its time is virtual. Linking
// test_simulation into a test program replaces there all that serial/platform/SerialDevice.h
// declares, the program's clock and nanosleep().
//
// Time passes when the thread of the write looks at the clock, and at no other moment: every wait
// of the program is such looking, so minutes of it take milliseconds. What the device has to say
// comes during these looks, and a look returns only once the receive thread has taken it and asked
// for more. So the order of everything is that of virtual time, whatever the machine is busy with:
// the same options give the same run.
#pragma once

#include "tests/simulation/SimulatedClock.h"
#include "tests/simulation/SimulatedPort.h"

#include <termios.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <sys/types.h>
#include <thread>

namespace flashwriter::simulation {

// One device and one clock, for as long as the object lives; there is only one at a time. The port
// must outlive it. Thread-safe.
class Simulation {
public:
    // limit: a run of more virtual time is a hang, and ends the whole process with a message.
    Simulation(SimulatedPort& port, const ClockOptions& options,
               VirtualTime limit = std::chrono::minutes(30));
    ~Simulation();
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    // Null when there is none.
    static Simulation* current();

    VirtualTime now() const;
    // How often the device has been opened and closed, and how often a descriptor was used that was
    // not open then (but -1, which the program uses for "none").
    std::uint32_t openings() const;
    std::uint32_t closings() const;
    std::uint32_t strayCalls() const;

    // What the program's calls come to. Results are those of SerialDevice.h: -1 and errno.
    int open();
    void close(int descriptor);
    ssize_t read(int descriptor, std::uint8_t* bytes, std::size_t size);
    ssize_t write(int descriptor, std::span<const std::uint8_t> bytes);
    void discard(int descriptor);
    int setSpeed(int descriptor, std::uint64_t bitsPerSecond);
    int lines(int descriptor, const board::LineRequest& request, std::uint32_t& bits);
    void readAttributes(int descriptor, termios& attributes) const;
    void writeAttributes(int descriptor, const termios& attributes);
    std::uint64_t readClock();
    // The program waits for its receive thread to end: reads return at once from now on.
    void hurryReader();
    // The program sleeps only until its receive thread runs, so that is what ends a sleep; it takes
    // no virtual time.
    void sleep();

private:
    using Lock = std::unique_lock<std::mutex>;

    bool isOpen(int descriptor);
    void awaitReader(Lock& lock);
    void handOver(Lock& lock);
    template <class Condition>
    void waitForReader(Lock& lock, const Condition& condition);

    SimulatedPort& m_port;
    VirtualTime m_limit;
    mutable std::mutex m_mutex;
    std::condition_variable m_forReader;
    std::condition_variable m_forWriter;
    SimulatedClock m_clock;
    termios m_attributes{};
    int m_descriptor = -1;      // that is open, -1 for none
    std::thread::id m_opener;   // the thread of the write
    bool m_readerReads = false; // the receive thread waits inside read() for something to arrive
    bool m_readerSeen = false;  // and has done so since the device was opened
    bool m_hurry = false;       // it is to end
    std::uint32_t m_openings = 0;
    std::uint32_t m_closings = 0;
    std::uint32_t m_strayCalls = 0;
};

} // namespace flashwriter::simulation
