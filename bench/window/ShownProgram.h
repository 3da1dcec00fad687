#pragma once

#include "bench/window/Screen.h"
#include "tests/support/ChildProcess.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace flashwriter::bench {

// A program with one window, and where and how to see that this has been painted.
struct WindowToSee {
    std::string program; // path
    testing::Point middle;
    std::uint32_t background = 0; // colour of the middle without the window,
    std::uint32_t painted = 0;    // and with it
};

// Starts the program once to find out where its window appears, and in which colour. Throws
// std::runtime_error when it does not appear, or cannot be told from what is behind it.
WindowToSee seeWindow(const Screen& screen, const std::string& program, const std::string& title);

// Such a program that runs, its window painted. It is ended, and off the screen, when the object
// has gone.
class ShownProgram {
public:
    // Returns as soon as the window has been painted; throws std::runtime_error when that takes
    // what only a hang does. Both are borrowed.
    ShownProgram(const Screen& screen, const WindowToSee& window);
    ~ShownProgram();
    ShownProgram(const ShownProgram&) = delete;
    ShownProgram& operator=(const ShownProgram&) = delete;

    pid_t pid() const { return m_process.pid(); }

    // From before the process was made until its window had been painted.
    std::chrono::microseconds startTime() const { return m_startTime; }

private:
    bool waitForColour(std::uint32_t colour) const;

    const Screen& m_screen;
    const WindowToSee& m_window;
    std::chrono::steady_clock::time_point m_begin;
    testing::ChildProcess m_process;
    std::chrono::microseconds m_startTime{};
};

} // namespace flashwriter::bench
