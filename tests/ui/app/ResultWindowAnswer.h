#pragma once

#include <QDialog>
#include <QStringList>
#include <QTimer>

#include <functional>

namespace flashwriter::testing {

// Presses OK in each result window that comes up, and keeps what the windows said.
class ResultWindowAnswer {
public:
    // Presses as soon as isDue() allows; look() sees the window just before.
    explicit ResultWindowAnswer(
        std::function<void(QDialog&)> look = [](QDialog&) {},
        std::function<bool()> isDue = [] { return true; });

    QStringList messages;
    QStringList advice;

private:
    void answer();

    std::function<void(QDialog&)> m_look;
    std::function<bool()> m_isDue;
    QTimer m_timer;
};

} // namespace flashwriter::testing
