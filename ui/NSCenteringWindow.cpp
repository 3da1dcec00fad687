#include "ui/NSCenteringWindow.h"

#include "ui/ReturnKey.h"

#include <cmath>

namespace flashwriter {

namespace {

// Whether a number of pixels, which may be no number, is one that a window can stand at or have.
bool isPossible(qreal pixels) {
    return std::abs(pixels) <= QWIDGETSIZE_MAX;
}

// What the window system draws around a window.
QSizeF decoration(const QWidget& window) {
    return window.frameGeometry().size() - window.size();
}

} // namespace

NSCenteringWindow::NSCenteringWindow(QWidget* parent) : QDialog(parent) {}

void NSCenteringWindow::awakeFromNib() {
    m_dispPoint = QPointF(0, 0);
}

// A window that has not been shown has no decoration yet. Its parent's is what it will get, or
// near.
QSizeF NSCenteringWindow::frameSize() const {
    const QSizeF own = decoration(*this);
    const bool isKnown = !own.isNull() || parentWidget() == nullptr;
    return size() + (isKnown ? own : decoration(*parentWidget()->window()));
}

void NSCenteringWindow::makeCenteringPoint(const QRectF& parent) {
    const QSizeF frame = frameSize();
    m_dispPoint.setX(parent.x() + (parent.width() - frame.width()) * 0.5);
    m_dispPoint.setY(parent.y() + parent.height() - (frame.height() + parent.height()) * 0.5);
}

void NSCenteringWindow::setFrame(const QRectF& frame, bool display) {
    QRectF placed = frame;
    if (m_dispPoint.x() != 0 && m_dispPoint.y() != 0) {
        placed.moveTopLeft(m_dispPoint);
    }
    if (isPossible(placed.width()) && isPossible(placed.height())) {
        resize((placed.size() - (frameSize() - size())).toSize());
    }
    if (isPossible(placed.x()) && isPossible(placed.y())) {
        move(placed.topLeft().toPoint());
    }
    if (display) {
        repaint();
    }
}

// Return that is held down since another window is not meant for this one.
void NSCenteringWindow::keyPressEvent(QKeyEvent* event) {
    if (!isRepeatedReturn(*event)) {
        QDialog::keyPressEvent(event);
    }
}

// Where no point is stored the platform places the window as it is used to.
void NSCenteringWindow::setVisible(bool visible) {
    if (visible && m_dispPoint.x() != 0 && m_dispPoint.y() != 0) {
        setFrame(QRectF(pos(), frameSize()), false);
    }
    QDialog::setVisible(visible);
}

} // namespace flashwriter
