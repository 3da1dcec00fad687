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

testing::Point Screen::middleOf(const std::string& window) const {
    const Window id = std::stoul(window);
    XWindowAttributes attributes{};
    testing::Point middle;
    Window child = 0;
    if (XGetWindowAttributes(m_display.get(), id, &attributes) == 0 ||
        XTranslateCoordinates(m_display.get(), id, attributes.root, attributes.width / 2,
                              attributes.height / 2, &middle.x, &middle.y, &child) == 0) {
        throw std::runtime_error("a window has gone that is to be measured");
    }
    return middle;
}

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
