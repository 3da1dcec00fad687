#pragma once

#include "tests/kernel/runs/Machine.h"
#include "tests/support/ImageFile.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace flashwriter::kernel {

// A board that can be plugged into the machine, and the programs that run there. At the end of a
// test the adapter is unplugged and its port has gone.
class KernelFixture : public ::testing::Test {
protected:
    KernelFixture();
    ~KernelFixture() override;

    static Guest& guest() { return Machine::the().guest(); }
    static UsbAdapter& adapter() { return Machine::the().adapter(); }
    static bool isFtdi() { return Machine::the().kind() == AdapterKind::ftdiSio; }

    // The port's device in the machine, while an adapter is plugged in.
    static std::string port() { return isFtdi() ? "/dev/ttyUSB0" : "/dev/ttyACM0"; }

    // Powers a new board up with m_board, and waits until the machine has made a port of it.
    void plugIn();
    // Returns when the port has gone.
    static void unplug();
    static void waitUntilPortHasGone();

    // Starts a write; its diagnostics go to a file in the machine.
    static std::unique_ptr<GuestProcess>
    flashwrite(const std::string& speed, const std::string& file,
               const std::vector<std::string>& environment = {});

    // Writes the file on the board that is plugged in, to its end: the log is that of a success,
    // and the board's flash holds the image afterwards. A write that fails while the machine was
    // held up is made anew, twice at most.
    static void writeAndReadBack(const std::string& speed, const std::string& file,
                                 const std::vector<std::uint8_t>& image);

    // Makes attempts until one is well, which it tells by true, at most three. A further one is
    // made only if the machine was held up since that record of the board's transcript.
    static void untilNotHeldUp(std::size_t from, const std::function<bool()>& attempt);

    // What helps to understand a failure: the board's transcript and the program's diagnostics.
    static std::string story();

    board::BoardOptions m_board;
};

} // namespace flashwriter::kernel
