#include "ui/NSFileDropWindow.h"

#include "sequence/context/Shelter.h"
#include "ui/ReturnKey.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QWindow>

#include <algorithm>

namespace flashwriter {

namespace {

// Without another key held with it.
bool isPlainReturn(const QKeyEvent& event) {
    return isReturn(event) && (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

} // namespace

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

// The field is enabled afterwards whatever it was before, so that a drag over it whose end got lost
// on the way does not leave it disabled for good. While the monitor is open a path can be entered
// from then on; that does no harm, as Write stays disabled and reads the field when it is pressed.
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
    m_isCloseDue = m_isCloseHeld;
    event->setAccepted(!m_isSheetUp && !m_isCloseHeld);
}

void NSFileDropWindow::holdClose(bool isHeld) {
    m_isCloseHeld = isHeld;
    if (!isHeld && m_isCloseDue) {
        const auto closeSoon = [this] {
            QMetaObject::invokeMethod(this, "close", Qt::QueuedConnection);
        };
        sheltered("close", [&] { whenThereIsMemory(closeSoon); }); // or it is to be asked again
    }
}

// A modal window, or a program that dragged something here and died, keeps the end of a drag from
// the field; a mouse that comes in without a drag shows that there is none.
bool NSFileDropWindow::event(QEvent* event) {
    const bool hasNoDrag = event->type() == QEvent::WindowBlocked || event->type() == QEvent::Enter;
    if (hasNoDrag && !m_trgetTextField.isNull() && m_trgetTextField->isDragging()) {
        m_trgetTextField->draggingExited();
    }
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.isAutoRepeat() && key.modifiers().testFlag(Qt::AltModifier)) {
            event->accept(); // one press of a button for one press of its letter
            return true;
        }
    }
    return QMainWindow::event(event);
}

void NSFileDropWindow::setSheetUp(bool isUp) {
    m_isSheetUp = isUp;
    if (!isUp && m_sheetEnd) {
        m_sheetEnd();
    }
}

// Window managers have ways to minimise that need no button.
void NSFileDropWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && m_isSheetUp && isMinimized()) {
        setWindowState(windowState() & ~Qt::WindowMinimized);
    }
}

void NSFileDropWindow::keyPressEvent(QKeyEvent* event) {
    if (isRepeatedReturn(*event)) {
        return; // one write for one press
    }
    if (!isPlainReturn(*event)) {
        QMainWindow::keyPressEvent(event);
        return;
    }
    const QList<QPushButton*> buttons = findChildren<QPushButton*>();
    const auto found = std::find_if(buttons.begin(), buttons.end(), [this](const auto* button) {
        return button->isDefault() && button->isVisible() && button->window() == this;
    });
    if (found != buttons.end()) {
        (*found)->click(); // which a disabled button ignores
    }
}

} // namespace flashwriter
