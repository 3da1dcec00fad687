#include "tests/support/desktop/Hands.h"

#include "tests/support/Eventually.h"
#include "tests/support/desktop/Desktop.h"

#include <algorithm>
#include <chrono>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

namespace flashwriter::testing {

namespace {

using Words = std::vector<std::string>;

std::string hand(Words words) {
    words.insert(words.begin(), "xdotool");
    return toolOutput(words);
}

Words moving(Point point) {
    return {"mousemove", std::to_string(point.x), std::to_string(point.y)};
}

void clickButton(Point point, const char* button, const char* times) {
    Words words = moving(point);
    words.insert(words.end(), {"click", "--repeat", times, "--delay", "40", button});
    hand(words);
}

// A title as a regular expression that nothing else matches.
std::string exactly(const std::string& title) {
    std::string pattern = "^";
    for (const char c : title) {
        if (std::string_view(".[]()*+?^$\\|{}").find(c) != std::string_view::npos) {
            pattern += '\\';
        }
        pattern += c;
    }
    return pattern + "$";
}

// xdotool's word for finding nothing is a status that is not 0.
std::vector<std::string> windowsOf(const std::string& title) {
    std::vector<std::string> ids;
    try {
        std::istringstream lines(hand({"search", "--onlyvisible", "--name", exactly(title)}));
        for (std::string id; std::getline(lines, id);) {
            ids.push_back(id);
        }
    } catch (const std::runtime_error&) {
        ids.clear();
    }
    return ids;
}

void photograph(const Words& what, const std::string& path) {
    Words words{"import", "-silent"};
    words.insert(words.end(), what.begin(), what.end());
    words.push_back("png:" + path);
    toolOutput(words);
}

} // namespace

void moveTo(Point point) {
    hand(moving(point));
}

void click(Point point) {
    clickButton(point, "1", "1");
}

void rightClick(Point point) {
    clickButton(point, "3", "1");
}

void doubleClick(Point point) {
    clickButton(point, "1", "2");
}

// A character that the keyboard lacks is put on a spare key for as long as it is typed. Programs
// look up what a key means when they come to it, so each of those is given time.
void type(const std::string& text) {
    const auto isPlain = [](char c) { return c >= ' ' && c <= '~'; };
    for (auto at = text.begin(); at != text.end();) {
        const bool plain = isPlain(*at);
        const auto end = std::find_if(at, text.end(), [&](char c) { return isPlain(c) != plain; });
        hand({"type", "--delay", plain ? "2" : "400", "--", std::string(at, end)});
        at = end;
    }
}

void press(const std::string& keys) {
    hand({"key", "--", keys});
}

void drag(Point from, Point to, const std::function<void()>& hovering) {
    constexpr int STEPS = 12;
    Words words = moving(from);
    words.insert(words.end(), {"mousedown", "1"});
    for (int i = 1; i <= STEPS; ++i) {
        const Words step =
            moving({from.x + (to.x - from.x) * i / STEPS, from.y + (to.y - from.y) * i / STEPS});
        words.insert(words.end(), {"sleep", "0.02"});
        words.insert(words.end(), step.begin(), step.end());
    }
    hand(words);
    hovering();
    // The last of the way again: a target hears of a drag by its movements.
    hand({"mousemove_relative", "--", "1", "0", "sleep", "0.1", "mouseup", "1"});
}

std::string waitForWindow(const std::string& title) {
    std::vector<std::string> ids;
    const bool isThere = eventually([&] {
        ids = windowsOf(title);
        return !ids.empty();
    });
    return isThere ? ids.back() : "";
}

bool windowIsShown(const std::string& title) {
    return !windowsOf(title).empty();
}

std::string activeWindow() {
    try {
        const std::string line = hand({"getactivewindow", "getwindowname"});
        return line.substr(0, line.find('\n'));
    } catch (const std::runtime_error&) {
        return "";
    }
}

void minimise(const std::string& window) {
    hand({"windowminimize", window});
}

void unminimise(const std::string& window) {
    hand({"windowactivate", window});
}

void screenshot(const std::string& path) {
    photograph({"-window", "root"}, path);
}

void screenshot(const std::string& path, const Rectangle& part) {
    std::ostringstream crop;
    crop << part.width << 'x' << part.height << '+' << part.x << '+' << part.y;
    photograph({"-window", "root", "-crop", crop.str(), "+repage"}, path);
}

void screenshotOfWindow(const std::string& path, const std::string& window) {
    photograph({"-frame", "-window", window}, path);
}

} // namespace flashwriter::testing
