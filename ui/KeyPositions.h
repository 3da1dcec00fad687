#pragma once

#include <cstdint>

class QKeyEvent;

namespace flashwriter {

// Keys by where they are on the keyboard, named after what an ANSI keyboard has there; what the
// keyboard's layout makes of them does not matter.
enum class KeyPosition : std::uint8_t { A, Z, X, C, V, Other };

// The position of an event's key, from the hardware's code as the window system in use gives it.
// Other for an event that no keyboard has sent.
KeyPosition keyPosition(const QKeyEvent& event);

// The same where it is known whether the window system is that of macOS, or X11 or Wayland.
KeyPosition keyPosition(const QKeyEvent& event, bool isCocoa);

// Whether an event has the hardware's code. One that an on-screen keyboard or another program has
// made up may have none.
bool comesFromKeyboard(const QKeyEvent& event);

} // namespace flashwriter
