#include "bench/window/Screen.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <stdexcept>

namespace flashwriter::bench {

void waitUntilDrawn(_XDisplay* display) {
    XSync(display, False);
}

Screen::Screen() : m_display(XOpenDisplay(nullptr), &XCloseDisplay) {
    if (!m_display) {
        throw std::runtime_error("no screen");
    }
}

Screen::~Screen() = default;

std::uint32_t Screen::colourAt(testing::Point point) const {
    const Window root = DefaultRootWindow(m_display.get());
    XImage* image = XGetImage(m_display.get(), root, point.x, point.y, 1, 1, AllPlanes, ZPixmap);
    if (image == nullptr) {
        throw std::runtime_error("the screen has no such point");
    }
    const auto colour = static_cast<std::uint32_t>(XGetPixel(image, 0, 0));
    XDestroyImage(image);
    return colour;
}

void Screen::pressDigit(char digit) const {
    const KeyCode key = XKeysymToKeycode(m_display.get(), static_cast<KeySym>(digit));
    XTestFakeKeyEvent(m_display.get(), key, True, CurrentTime);
    XTestFakeKeyEvent(m_display.get(), key, False, CurrentTime);
    XFlush(m_display.get());
}

} // namespace flashwriter::bench
