#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace flashwriter {

// Writes all bytes, whatever interrupts; gives up silently when the descriptor's reader is gone or
// its disk is full, because a write to a board must not end for that.
void writeAll(int descriptor, std::string_view bytes);

// The two output streams of the program, of which one or both may be the same terminal. The log
// goes to the first, the progress to the second, and only if that is a terminal. Belongs to the
// main thread.
//
// While a write goes on, the last line of the log often waits for its end ("## Programming..."). On
// a shared terminal the progress stands behind it in the same line, and is taken away before the
// log goes on. That needs nothing of the terminal but the carriage return.
class ConsoleOutput {
public:
    // Two descriptors, borrowed.
    ConsoleOutput(int output, int error);

    // Whether showProgress() shows anything.
    bool showsProgress() const { return m_showsProgress; }

    // Appends to the log, byte for byte.
    void write(std::string_view text);

    // Appends lines to the log, beginning on a line of their own; the last one is ended if it
    // isn't.
    void writeLines(std::string_view text);

    // Replaces what is shown of the progress. The line never becomes wider than the terminal.
    void showProgress(std::int32_t step, std::int32_t percentage);
    void hideProgress();

private:
    std::size_t columns() const;
    // What to send to the terminal so that the progress appears, or disappears.
    std::string drawing();
    std::string erasing();

    int m_output;
    int m_error;
    bool m_showsProgress;
    bool m_isShared;         // both are the same terminal
    std::string m_openLine;  // of the log, since its last line break
    std::size_t m_drawn = 0; // columns of progress behind m_openLine
    std::int32_t m_step = 0;
    std::int32_t m_percentage = 0;
    bool m_isVisible = false;
};

} // namespace flashwriter
