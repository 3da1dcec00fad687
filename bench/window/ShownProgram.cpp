#include "bench/window/ShownProgram.h"

#include <csignal>
#include <stdexcept>
#include <thread>

namespace flashwriter::bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::microseconds LOOK{500};
constexpr std::chrono::seconds HANG{20};
constexpr std::chrono::seconds SETTLING{1};

testing::ChildOptions silently(const std::string& program) {
    testing::ChildOptions options;
    options.arguments = {program};
    options.errorFile = "/dev/null";
    return options;
}

} // namespace

WindowToSee seeWindow(const Screen& screen, const std::string& program, const std::string& title) {
    WindowToSee window;
    window.program = program;
    {
        testing::ChildProcess process(silently(program));
        const std::string shown = testing::waitForWindow(title);
        if (shown.empty()) {
            throw std::runtime_error(program + " shows no window");
        }
        std::this_thread::sleep_for(SETTLING);
        window.middle = screen.middleOf(shown);
        window.painted = screen.colourAt(window.middle);
        process.signal(SIGTERM);
        process.wait();
    }
    std::this_thread::sleep_for(SETTLING);
    window.background = screen.colourAt(window.middle);
    if (window.background == window.painted) {
        throw std::runtime_error("the window of " + program + " looks like what is behind it");
    }
    return window;
}

ShownProgram::ShownProgram(const Screen& screen, const WindowToSee& window)
    : m_screen(screen), m_window(window), m_begin(Clock::now()),
      m_process(silently(window.program)) {
    if (!waitForColour(window.painted)) {
        throw std::runtime_error("the window of " + window.program + " is not painted");
    }
    m_startTime = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - m_begin);
}

ShownProgram::~ShownProgram() {
    m_process.signal(SIGTERM);
    m_process.wait();
    waitForColour(m_window.background);
}

bool ShownProgram::waitForColour(std::uint32_t colour) const {
    const auto giveUp = Clock::now() + HANG;
    while (m_screen.colourAt(m_window.middle) != colour) {
        if (Clock::now() > giveUp) {
            return false;
        }
        std::this_thread::sleep_for(LOOK);
    }
    return true;
}

} // namespace flashwriter::bench
