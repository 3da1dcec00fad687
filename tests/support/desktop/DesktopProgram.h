// The desktop program as a person has it before them: started on the desktop of this process,
// worked with mouse and keys, read as a screen reader does.
#pragma once

#include "tests/support/ChildProcess.h"
#include "tests/support/desktop/Desktop.h"
#include "tests/support/desktop/ScreenReader.h"

#include <cstddef>
#include <string>
#include <vector>

namespace flashwriter::testing {

inline const char* const MAIN_WINDOW = "Flash Writer"; // its title, and that of the result window

// Names under which the screen reader finds the window's controls. A combo box goes by its label.
inline const char* const PORT = "Port:";
inline const char* const SPEED = "Speed:";
inline const char* const IMAGE_FILE = "filePathTextField";
inline const char* const MONITOR_SPEED = "Baud rate:";
inline const char* const LOG = "logDispTextView";
inline const char* const RESULT = "resultMessage";
inline const char* const PROGRESS = "progressLabel";

// The program's own process. Everything that waits throws std::runtime_error, with what is on the
// screen, when only a hang can have kept it.
class DesktopProgram {
public:
    // linesLibrary: what gives the virtual board's port its lines, loaded into the program. The
    // main window has the keyboard when it returns.
    DesktopProgram(const std::string& program, const std::string& linesLibrary);
    ~DesktopProgram();
    DesktopProgram(const DesktopProgram&) = delete;
    DesktopProgram& operator=(const DesktopProgram&) = delete;

    ChildProcess& process() { return m_process; }
    const ScreenReader& screen() const { return m_reader; }
    std::string diagnostics() const; // all of its standard error so far

    // What it has taken of the processors so far, in clock ticks, of which there are a hundred in a
    // second: all its threads, and the thread of its window.
    long processorTime() const;
    long windowProcessorTime() const;

    // The directory that the program takes for its user's. It was empty at the start.
    const std::string& home() const { return m_home; }

    // With the mouse, once it is there.
    void clickOn(const std::string& name) const;

    // Puts a text into a field, or into that of a combo box, in place of what it held.
    void enter(const std::string& name, const std::string& text) const;

    // Chooses an item of a combo box's list by the keyboard.
    void choose(const std::string& name, std::size_t index) const;
    std::vector<std::string> items(const std::string& name) const;

    // What a field, a combo box, a log or a label shows; empty when it is not on the screen.
    std::string shown(const std::string& name) const;
    bool waitUntilShown(const std::string& name, const std::string& text) const;

    bool waitUntilEnabled(const std::string& name, bool enabled = true) const;
    bool waitUntilFocused(const std::string& name) const;

    // Enters port and file and presses Write.
    void startWrite(const std::string& port, const std::string& file) const;

    // Waits for the result window: its text. dismissResult() presses Return in it.
    std::string result() const;
    void dismissResult() const;
    std::string write(const std::string& port, const std::string& file) const; // all of that

    // Where the main window is, with its frame.
    Rectangle frame() const;

    // Presses the button of the main window's frame that closes it, or that minimises it: those are
    // the window manager's, and work whatever has the keyboard.
    void closeByFrame() const;
    void minimiseByFrame() const;

private:
    std::string processDirectory() const;
    void clickFrame(int fromRight) const;

    std::string m_home;
    std::string m_errorFile;
    ChildProcess m_process;
    ScreenReader m_reader;
};

} // namespace flashwriter::testing
