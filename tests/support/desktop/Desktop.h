// A screen with all that a desktop program finds on one, for as long as a test runs.
#pragma once

#include "tests/support/ChildProcess.h"

#include <memory>
#include <string>

namespace flashwriter::testing {

// An X server that shows nothing to anybody, a window manager, and the two message buses that a
// program's accessibility goes over. Several run on one machine, each in a process of its own: this
// process's environment is made to lead to the desktop, for its children and its libraries, and
// stays so.
class Desktop {
public:
    static constexpr int WIDTH = 1280; // pixels
    static constexpr int HEIGHT = 800;

    // Everything is there when it returns. Throws std::runtime_error when something cannot start.
    Desktop();
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    // A directory for whatever a test needs; gone at the end.
    const std::string& directory() const { return m_directory; }

private:
    void startScreen();
    void startBus();
    void startWindowManager();

    std::string m_directory;
    std::unique_ptr<ChildProcess> m_screen;
    std::unique_ptr<ChildProcess> m_bus;
    std::unique_ptr<ChildProcess> m_windowManager;
};

// The desktop of this process, which starts when it is first asked for and ends with the process.
Desktop& desktop();

// Runs a tool of the system to its end and returns what it printed; throws std::runtime_error when
// its status is not 0.
std::string toolOutput(const std::vector<std::string>& arguments);

} // namespace flashwriter::testing
