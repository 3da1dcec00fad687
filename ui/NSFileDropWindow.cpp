#include "ui/NSFileDropWindow.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QWindow>

namespace flashwriter {

NSFileDropWindow::NSFileDropWindow(QWidget* parent) : QMainWindow(parent) {
    awakeFromNib();
}

void NSFileDropWindow::awakeFromNib() {
    setAcceptDrops(true);
    m_trgetTextField = nullptr;
}

void NSFileDropWindow::setTrgetTextField(NSFileDropTextField* field) {
    m_trgetTextField = field;
}

DragOperation NSFileDropWindow::draggingEntered(const QMimeData& /*dragging*/) {
    if (!m_trgetTextField.isNull()) {
        const bool hadFocus = focusWidget() == m_trgetTextField; // disabling takes it away
        m_trgetTextField->setEnabled(false);
        m_trgetTextField->setEnabled(true);
        if (hadFocus) {
            m_trgetTextField->setFocus();
        }
    }
    return DragOperation::None;
}

// Told to the window system's window: on the widget it would mean to hide it and show it again.
void NSFileDropWindow::setMiniaturizeEnabled(bool enabled) {
    m_isMiniaturizeEnabled = enabled;
    if (windowHandle() != nullptr) {
        windowHandle()->setFlag(Qt::WindowMinimizeButtonHint, enabled);
    }
}

void NSFileDropWindow::dragEnterEvent(QDragEnterEvent* event) {
    draggingEntered(*event->mimeData());
    event->ignore();
}

void NSFileDropWindow::closeEvent(QCloseEvent* event) {
    event->setAccepted(!m_isSheetUp);
}

// Window managers have ways to minimise that need no button.
void NSFileDropWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && m_isSheetUp && isMinimized()) {
        setWindowState(windowState() & ~Qt::WindowMinimized);
    }
}

void NSFileDropWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QMainWindow::keyPressEvent(event);
        return;
    }
    for (QPushButton* button : findChildren<QPushButton*>()) {
        if (button->isDefault() && button->isVisible()) {
            button->click(); // which a disabled button ignores
        }
    }
}

} // namespace flashwriter
