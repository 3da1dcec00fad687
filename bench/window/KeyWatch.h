#pragma once

#include "bench/window/Figures.h"
#include "bench/window/KeyPresses.h"

#include <QObject>

#include <memory>

struct _XDisplay; // NOLINT(bugprone-reserved-identifier): the X library's name

namespace flashwriter::bench {

// What became of the keys that were pressed.
struct KeyFigures {
    Durations arrivals; // from each press until it had arrived at its window,
    Durations effects;  // and until that window had been drawn anew, on the screen
    std::size_t sent = 0;
    std::size_t lost = 0; // presses that never arrived
};

// Presses keys from its beginning to finish(), and watches them arrive at whichever of the
// program's windows has the keyboard. Main thread.
class KeyWatch : public QObject {
public:
    KeyWatch(); // throws std::runtime_error when the program does not draw on an X server

    // Presses that are under way are left out, unless they are for longer than any may be: those
    // count with the time that they have been.
    KeyFigures finish(std::chrono::milliseconds longest);
    bool isFinished() const { return m_isFinished; }

    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    static std::chrono::microseconds since(KeyClock::time_point time);

    _XDisplay* m_display;
    KeyFigures m_figures;
    bool m_isFinished = false;
    KeyPresses m_presses;
};

} // namespace flashwriter::bench
