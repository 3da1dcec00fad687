#pragma once

#include <functional>

namespace flashwriter {

class NSFileDropWindow;

// Runs what the system may hold up: opening and closing a port and moving its lines take as long as
// an adapter needs that does not take what was sent, half a minute and more. The main thread waits
// for it, and the window lives meanwhile.
//
// Main thread, but for the work itself. What begins while there is work is to be refused by
// whoever is asked for it (isBusy()); mouse and keys wait by themselves, and so does the window's
// close.
class PortWork {
public:
    // The window is borrowed. whenHeld is called once for each work that takes longer than 2 s.
    PortWork(NSFileDropWindow& window, std::function<void()> whenHeld);
    PortWork(const PortWork&) = delete;
    PortWork& operator=(const PortWork&) = delete;

    // Runs the work on a thread of its own, or where none is to be had on this one, and returns
    // when it is done. What the work throws comes out here. Not while there is other work.
    void run(const std::function<void()>& work);

    bool isBusy() const { return m_isBusy; }

private:
    NSFileDropWindow& m_window;
    std::function<void()> m_whenHeld;
    bool m_isBusy = false;
};

} // namespace flashwriter
