#pragma once

#include "tests/kernel/runs/Machine.h"
#include "tests/support/ImageFile.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace flashwriter::kernel {

// What a program says of a write that succeeds, the result last.
inline const char* const SUCCESS_SAID = "## Programming Mode\n"
                                        "## Block Blank Check & Erace... OK\n"
                                        "## Programming... OK\n"
                                        "## Write Complete\n"
                                        "The writing processing succeeded. \n";

// A board that can be plugged into the machine, and the programs that run there. At the end of
// a test the adapter is unplugged and its port has gone.
class KernelFixture : public ::testing::Test {
protected:
    KernelFixture();
    ~KernelFixture() override;

    static Guest& guest() { return Machine::the().guest(); }
    static UsbAdapter& adapter() { return Machine::the().adapter(); }
    static bool isFtdi() { return Machine::the().kind() == AdapterKind::ftdiSio; }

    // The port's device in the machine, while an adapter is plugged in.
    static std::string port() { return isFtdi() ? "/dev/ttyUSB0" : "/dev/ttyACM0"; }

    // Powers a new board up with what is said below, and waits until the machine has made a port of
    // it.
    void plugIn();
    // Returns when the port has gone.
    static void unplug();
    static void waitUntilPortHasGone();

    // Starts a write; its diagnostics go to a file in the machine.
    static std::unique_ptr<GuestProcess>
    flashwrite(const std::string& speed, const std::string& file,
               const std::vector<std::string>& environment = {});

    // How a program's write went.
    struct Outcome {
        bool succeeded = false;
        std::string said; // the log, and behind it the result
    };
    // Makes a write of this image on the board that is plugged in, until it is not held up: it
    // succeeds and says so, it keeps to the protocol, and the board's flash holds
    // the image afterwards.
    void expectWritten(const std::vector<std::uint8_t>& image,
                       const std::function<Outcome()>& write);

    // The same by the command.
    void writeAndReadBack(const std::string& speed, const std::string& file,
                          const std::vector<std::uint8_t>& image,
                          const std::vector<std::string>& environment = {});

    // Makes attempts until one is well, which it tells by true, at most three. A further one is
    // made only if the machine was held up in the last one, by what the board saw of it. An attempt
    // may plug a board in.
    void untilNotHeldUp(const std::function<bool()>& attempt);

    // Whether one of the board's records says this.
    static bool hasHappened(const std::string& what);

    // What helps to understand a failure: the board's transcript and the program's diagnostics.
    static std::string story();

    board::BoardOptions m_board;
    std::string m_looseAt; // see UsbAdapterOptions

private:
    std::optional<std::size_t> m_attempt; // its first record in the transcript; none: no board yet
};

} // namespace flashwriter::kernel
