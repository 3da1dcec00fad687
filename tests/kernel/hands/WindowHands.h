#pragma once

#include "tests/kernel/hands/Message.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace flashwriter::kernel {

// Works a program's window through the hands that are loaded into it (Preload.cpp), by the object
// names of what is in it. Everything throws std::runtime_error when it cannot be done, or the
// program is gone or does not answer. One thread.
class WindowHands {
public:
    using Milliseconds = std::chrono::milliseconds;
    using Exchange = std::function<std::string(const std::string&)>; // a line for a line

    // socket: its path, where the program may have yet to appear. patience: for how long anything
    // may take; give a machine that is slow more.
    explicit WindowHands(const std::string& socket, Milliseconds patience = Milliseconds(20000));

    // The same by way of anything that carries lines there and back, without their ends.
    WindowHands(Exchange exchange, Milliseconds patience);

    void click(const std::string& name);   // returns when the click is on its way
    void press(const std::string& keys);   // likewise; such as "Return" or "Alt+W"
    void close(const std::string& window); // likewise; by the button in its frame
    void choose(const std::string& name, const std::string& item);
    void type(const std::string& name, const std::string& text);

    std::string text(const std::string& name);
    std::vector<std::string> items(const std::string& name);
    bool enabled(const std::string& name);
    bool visible(const std::string& name);
    std::vector<std::string> windows(); // their object names

    // Wait. The text that has a part like the regular expression; throws with the last text.
    std::string waitText(const std::string& name, const std::string& pattern);
    void waitGone(const std::string& name);
    void waitEnabled(const std::string& name);

    Milliseconds alive(); // how long the window took to answer
    void shot(const std::string& file);

    // Any command, see Commands.h and CommandServer.h; the answer without its first word.
    Words ask(const Words& command);

private:
    void waitUntil(const std::function<bool()>& condition, const std::string& what);
    std::string word(const Words& command);

    Exchange m_exchange;
    Milliseconds m_patience;
};

// A connection to the hands at a socket; waits for them until patience is over.
WindowHands::Exchange connectTo(const std::string& socket, WindowHands::Milliseconds patience);

} // namespace flashwriter::kernel
