#include "bench/window/KeyWatch.h"

#include "bench/window/Screen.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QWidget>

#include <stdexcept>

namespace flashwriter::bench {

namespace {

_XDisplay* displayOfProgram() {
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr) {
        throw std::runtime_error("the program's windows are not on an X server");
    }
    return x11->display();
}

} // namespace

KeyWatch::KeyWatch() : m_display(displayOfProgram()) {
    qGuiApp->installEventFilter(this);
}

std::chrono::microseconds KeyWatch::since(KeyClock::time_point time) {
    return std::chrono::duration_cast<std::chrono::microseconds>(KeyClock::now() - time);
}

// The press comes by here more than once, on its way to a widget and from there to what that one
// stands in; the first time is the one that counts.
bool KeyWatch::eventFilter(QObject* receiver, QEvent* event) {
    auto* widget = qobject_cast<QWidget*>(receiver);
    if (event->type() == QEvent::KeyPress && widget != nullptr && !m_isFinished) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (const auto pressed = m_presses.arrived(static_cast<char>(key))) {
            m_figures.arrivals.push_back(since(*pressed));
            widget->window()->repaint();
            waitUntilDrawn(m_display);
            m_figures.effects.push_back(since(*pressed));
        }
    }
    return false;
}

KeyFigures KeyWatch::finish(std::chrono::milliseconds longest) {
    m_isFinished = true;
    for (const KeyClock::time_point pressed : m_presses.stop()) {
        if (since(pressed) > longest) {
            m_figures.arrivals.push_back(since(pressed));
            m_figures.effects.push_back(since(pressed));
        }
    }
    m_figures.sent = m_presses.sent();
    m_figures.lost = m_presses.lost();
    return m_figures;
}

} // namespace flashwriter::bench
