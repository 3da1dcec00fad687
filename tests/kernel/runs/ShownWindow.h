#pragma once

#include "tests/kernel/guest/Guest.h"
#include "tests/kernel/hands/WindowHands.h"

#include <memory>
#include <string>

namespace flashwriter::kernel {

// The desktop program in the machine, with hands that work its window; it is killed at the end. The
// port is in its list, and chosen, if it is there when the program starts.
class ShownWindow {
public:
    ShownWindow(Guest& guest, const std::string& port);

    WindowHands& hands() { return *m_hands; }

    // The port's name in the program's list.
    static const char* portName() { return "/dev/cu.usbserial-machine"; }

    // Fills the form and presses Write. speed: as the form shows it.
    void begin(const std::string& speed, const std::string& file);
    // Does so and waits for the result; gives its text.
    std::string write(const std::string& speed, const std::string& file);
    // Presses OK in the result window.
    void dismissResult();

private:
    std::string ask(const std::string& line);

    std::unique_ptr<GuestProcess> m_program;
    std::unique_ptr<GuestProcess> m_client;
    std::size_t m_answered = 0; // characters of what the client has said
    std::unique_ptr<WindowHands> m_hands;
};

} // namespace flashwriter::kernel
