#include "tests/ui/app/ResultWindowAnswer.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>

#include <chrono>
#include <utility>

namespace flashwriter::testing {

ResultWindowAnswer::ResultWindowAnswer(std::function<void(QDialog&)> look,
                                       std::function<bool()> isDue)
    : m_look(std::move(look)), m_isDue(std::move(isDue)) {
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { answer(); });
    m_timer.start(std::chrono::milliseconds(2));
}

void ResultWindowAnswer::answer() {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr || dialog->objectName() != "resultWindow" || !m_isDue()) {
        return;
    }
    messages.append(dialog->findChild<QLabel*>("resultMessage")->text());
    advice.append(dialog->findChild<QLabel*>("resultAdvice")->text());
    m_look(*dialog);
    dialog->findChild<QPushButton*>("okButton")->click();
}

} // namespace flashwriter::testing
