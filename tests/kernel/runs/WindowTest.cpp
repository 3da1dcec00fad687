// The desktop program on a real driver.
#include "tests/kernel/runs/FilePair.h"
#include "tests/kernel/runs/KernelFixture.h"
#include "tests/kernel/runs/ShownWindow.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>

namespace flashwriter::kernel {
namespace {

using ::testing::HasSubstr;

const char* const RESULT = "The writing processing succeeded. ";
const char* const FAILURE = "The writing processing failed";
const char* const STANDSTILL = "Nothing has happened for a while: the board is silent";
constexpr std::chrono::seconds LIVELY{2}; // a person takes a window that is longer silent for dead
constexpr std::chrono::seconds SOON{10};  // whatever the window is asked to do takes 5 s at most

class Window : public KernelFixture {
protected:
    Window() {
        m_board.target.monitor = {"Hello there.\r\n", std::chrono::milliseconds(200), 9600};
    }

    void writeAndReadBack(ShownWindow& window, const std::string& speed,
                          const FilePair::Entry& file) {
        SCOPED_TRACE(file.path + " at " + speed);
        expectWritten(file.image, [&] {
            const std::string result = window.write(speed, file.path);
            window.dismissResult();
            return Outcome{.succeeded = result == RESULT,
                           .said = window.hands().text("logDispTextView") + "\n" + result + "\n"};
        });
    }

    // Asks the window again and again until something is so, soon; it is lively all the time.
    static void expectLivelyUntil(ShownWindow& window, const std::function<bool()>& condition) {
        using Clock = std::chrono::steady_clock;
        const auto end = Clock::now() + SOON;
        Clock::duration longest{};
        bool isSo = false;
        while (!isSo && Clock::now() < end) {
            const auto asked = Clock::now();
            isSo = condition();
            window.hands().alive();
            longest = std::max(longest, Clock::now() - asked);
            // The machine has one processor, and the program needs it.
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        EXPECT_TRUE(isSo);
        EXPECT_LT(longest, LIVELY);
    }

    // Makes a write that is to fail; gives whether the person was told meanwhile that nothing
    // happens any more.
    bool failsLively(ShownWindow& window) {
        window.begin("500,000 bps", m_files.raw.path());
        bool isTold = false;
        expectLivelyUntil(window, [&] {
            isTold = isTold || (window.hands().visible("progressWindow") &&
                                window.hands().text("progressHint").starts_with(STANDSTILL));
            return window.hands().visible("resultMessage");
        });
        EXPECT_THAT(window.hands().waitText("resultMessage", "."), HasSubstr(FAILURE));
        window.hands().waitText("resultAdvice", "plug the adapter in again");
        window.dismissResult();
        EXPECT_TRUE(window.hands().enabled("writeButton"));
        return isTold;
    }

    static void openMonitor(ShownWindow& window) {
        window.hands().click("monitorOpenButton");
        expectLivelyUntil(window,
                          [&] { return window.hands().text("monitorOpenButton") == "Close"; });
        EXPECT_FALSE(window.hands().enabled("writeButton"));
    }
    static void closeMonitor(ShownWindow& window) {
        window.hands().click("monitorOpenButton");
        expectLivelyUntil(window, [&] { return window.hands().enabled("writeButton"); });
    }

    void plugInWith(const std::vector<board::Fault>& faults) {
        m_board.faults = faults;
        plugIn();
    }

    const FilePair m_files;
};

TEST_F(Window, WritesBothKindsOfFilesAtBothSpeeds) {
    plugIn();
    ShownWindow window(guest(), port());
    EXPECT_EQ(window.hands().text("serialPortComboBox"), ShownWindow::portName());
    for (const char* const speed : {"115,200 bps", "500,000 bps"}) {
        for (const FilePair::Entry& file : m_files.entries()) {
            writeAndReadBack(window, speed, file);
        }
    }
}

// At the speed that the window begins with, and at one that the kernel has no name of its own for.
TEST_F(Window, ListensAndWritesInBothSensesOfDtr) {
    plugIn();
    ShownWindow window(guest(), port());
    for (const auto& [inverted, speed] : {std::pair(false, 9600U), std::pair(true, 250000U)}) {
        SCOPED_TRACE(inverted);
        unplug();
        m_board.target.invertedDtr = inverted;
        m_board.target.monitor.bitsPerSecond = speed;
        plugIn();
        window.hands().type("monitorBaudRateComboBox", std::to_string(speed));
        openMonitor(window);
        window.hands().waitText("logDispTextView", "Hello there.\nHello there.\n");
        closeMonitor(window);
        writeAndReadBack(window, "500,000 bps", m_files.entries().front());
    }
}

TEST_F(Window, TellsThatTheAdapterIsLostInTheMonitorAndInAWriteAndGoesOn) {
    plugIn();
    ShownWindow window(guest(), port());
    openMonitor(window);
    window.hands().waitText("logDispTextView", "Hello there.\n");
    adapter().unplug();
    EXPECT_THAT(window.hands().waitText("statusLabel", "gone"), HasSubstr("gone"));
    closeMonitor(window);
    waitUntilPortHasGone();

    plugInWith({board::parseFault("unplug-frame:100@12")});
    EXPECT_THAT(window.write("500,000 bps", m_files.raw.path()), HasSubstr(FAILURE));
    EXPECT_TRUE(adapter().unplugged()) << story();
    window.hands().waitText("resultAdvice", "has gone: the adapter came loose");
    window.dismissResult();
    waitUntilPortHasGone();

    plugInWith({});
    writeAndReadBack(window, "500,000 bps", m_files.entries().front());
}

// It takes no frame from the first on, then none amid a write.
TEST_F(Window, StaysAliveWhenTheAdapterIsStuckAndWritesOnAnother) {
    plugInWith({board::parseFault("stuck@1")});
    ShownWindow window(guest(), port());
    EXPECT_TRUE(failsLively(window));
    openMonitor(window); // hears nothing: whether DTR holds reset cannot be found out
    closeMonitor(window);
    unplug();
    plugInWith({board::parseFault("stuck@8")});
    failsLively(window); // too soon to be told of a standstill
    unplug();
    plugInWith({}); // the port is free: this one is the same again
    writeAndReadBack(window, "500,000 bps", m_files.entries().front());
}

} // namespace
} // namespace flashwriter::kernel
