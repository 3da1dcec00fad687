// What a person does while the system holds the port up waits, and costs nothing meanwhile.
#include "tests/endtoend/desktop/DesktopFixture.h"

#include "tests/support/desktop/Hands.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace flashwriter::testing {
namespace {

using namespace std::chrono_literals;

// Ten times of what it is. A window that asks all the time has little more on a busy machine.
constexpr double MOST_LOAD = 0.1;

// For the program, which inherits it.
struct HeldBreak {
    HeldBreak() {
        ::setenv("HELD_CALL", "break", 1);
        ::setenv("HELD_WHILE", file.c_str(), 1);
        std::ofstream{file};
    }
    ~HeldBreak() {
        end();
        ::unsetenv("HELD_CALL");
        ::unsetenv("HELD_WHILE");
    }
    HeldBreak(const HeldBreak&) = delete;
    HeldBreak& operator=(const HeldBreak&) = delete;
    void end() const { std::filesystem::remove(file); }

    const std::string file = desktop().directory() + "/held";
};

class DesktopHeldPort : public ::testing::Test {
protected:
    // Its share of a processor while somebody types and moves the mouse.
    double loadOfTheWindow() const {
        const auto start = std::chrono::steady_clock::now();
        const long before = m_program.windowProcessorTime();
        std::chrono::duration<double> passed{};
        for (int i = 0; passed < 3s; ++i) {
            press("x");
            moveTo({Desktop::WIDTH / 2 + i % 20, Desktop::HEIGHT / 2});
            std::this_thread::sleep_for(100ms);
            passed = std::chrono::steady_clock::now() - start;
        }
        constexpr double TICKS = 100; // in a second
        return static_cast<double>(m_program.windowProcessorTime() - before) / TICKS /
               passed.count();
    }

    const HeldBreak m_hold;
    board::VirtualBoard m_board;
    DesktopProgram m_program{FLASH_WRITER, HOLD_CALLS_PRELOAD ":" LINES_PRELOAD};
};

TEST_F(DesktopHeldPort, LetsWhatIsTypedWait) {
    m_board.start({});
    m_program.enter(PORT, m_board.portPath());
    m_program.clickOn(IMAGE_FILE);
    press("alt+o");
    ASSERT_TRUE(m_program.screen().waitUntil("statusLabel", [](const Accessible& label) {
        return label.description().starts_with("Still waiting for the port");
    }));
    const double load = loadOfTheWindow();
    RecordProperty("load", std::to_string(load));
    EXPECT_LT(load, MOST_LOAD);
    EXPECT_EQ(m_program.shown(IMAGE_FILE), "") << "not yet";
    m_hold.end();
    EXPECT_TRUE(m_program.screen().waitUntil("statusLabel", [](const Accessible& label) {
        return label.description().starts_with("The serial monitor is open");
    }));
}

} // namespace
} // namespace flashwriter::testing
