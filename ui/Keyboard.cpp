#include "ui/Keyboard.h"

#include <QGuiApplication>
#include <QWidget>

namespace flashwriter {

void giveKeyboardBack(QWidget& window) {
    if (QGuiApplication::applicationState() == Qt::ApplicationActive) {
        window.activateWindow();
    }
}

} // namespace flashwriter
