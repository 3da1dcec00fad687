// What a person does at a desktop, as events of the X server: no program can tell the difference.
#pragma once

#include <functional>
#include <string>

namespace flashwriter::testing {

struct Point {
    int x = 0; // pixels from the screen's left and upper edge
    int y = 0;
};

struct Rectangle {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    Point centre() const { return {x + width / 2, y + height / 2}; }
};

// Each returns when the X server has the events; what a program makes of them comes later. Works on
// the Desktop of this process. All throw std::runtime_error when the server refuses.
void moveTo(Point point);
void click(Point point);
void rightClick(Point point);
void doubleClick(Point point);
void type(const std::string& text);  // UTF-8, into whatever has the focus
void press(const std::string& keys); // a key or a chord, for example "Return" or "ctrl+a"

// A drag with the left button, in steps as a hand makes them. While it is held at the end, before
// the button is let go, hovering() is called.
void drag(
    Point from, Point to, const std::function<void()>& hovering = [] {});

// The X server's number of the window of exactly this title that the screen shows. Empty when none
// comes in the time that only a hang exceeds.
std::string waitForWindow(const std::string& title);
bool windowIsShown(const std::string& title);

// The title of the window that has the keyboard; empty when none has.
std::string activeWindow();

// Asks the window manager to minimise a window, as other ways than its button do, and back.
void minimise(const std::string& window);
void unminimise(const std::string& window);

// Saves what is on the screen as a PNG file: all of it, a part of it, or a window in its frame.
void screenshot(const std::string& path);
void screenshot(const std::string& path, const Rectangle& part);
void screenshotOfWindow(const std::string& path, const std::string& window);

} // namespace flashwriter::testing
