#pragma once

#include "tests/kernel/hands/Message.h"

#include <QObject>

#include <string>

namespace flashwriter::kernel {

// Takes commands from a socket and carries them out on the thread that made it, whichever loop that
// one is in: the program's own, a modal window's, or an open list's. Each who connects is heard on
// a thread of its own, and there is no end to it but the process's: the object is never destroyed.
//
// Beside those of carryOut():
//   wait-text NAME PATTERN MS   until what it shows has a part like the regular expression; the
//                               text. Refused with the last text when the time is over
//   alive                       how many ms the thread of the windows took to answer
class CommandServer {
public:
    // path: of a local socket, which is made anew. Throws std::system_error.
    explicit CommandServer(const std::string& path);
    ~CommandServer() = delete;
    CommandServer(const CommandServer&) = delete;
    CommandServer& operator=(const CommandServer&) = delete;

private:
    void acceptAll();
    void serve(int connection);
    Words answerTo(const Words& command);
    Words onWindows(const Words& command);
    Words waitText(const Words& command);
    Words alive();

    int m_listener = -1;
    QObject m_windows; // belongs to their thread
};

} // namespace flashwriter::kernel
