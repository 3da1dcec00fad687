#pragma once

#include "tests/support/desktop/Hands.h"

#include <cstdint>
#include <memory>
#include <string>

struct _XDisplay; // NOLINT(bugprone-reserved-identifier): the X library's name

namespace flashwriter::bench {

// Waits until the X server has drawn all that was asked of it over this connection.
void waitUntilDrawn(_XDisplay* display);

// A connection of its own to the screen of this process's desktop. One thread at a time.
class Screen {
public:
    Screen(); // throws std::runtime_error when there is none
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    // Of a window by the X server's number. Throws std::runtime_error when it has gone.
    testing::Point middleOf(const std::string& window) const;

    // What a person sees there, whoever has drawn it.
    std::uint32_t colourAt(testing::Point point) const;

    // Presses and lets go the key of a digit, '0' to '9'. Does not wait for anything.
    void pressDigit(char digit) const;

private:
    std::unique_ptr<_XDisplay, int (*)(_XDisplay*)> m_display;
};

} // namespace flashwriter::bench
