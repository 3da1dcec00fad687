#include "ui/SheetWindow.h"

#include "ui/NSFileDropWindow.h"

#include <QCloseEvent>
#include <QPainter>

namespace flashwriter {

namespace {

// A sheet on systems that have them; elsewhere a dialog without a title bar, which no window
// manager gives a close button.
constexpr Qt::WindowFlags SHEET = Qt::Sheet | Qt::FramelessWindowHint;

} // namespace

SheetWindow::SheetWindow(QWidget* parent) : QDialog(parent, SHEET) {
    setWindowModality(Qt::WindowModal);
}

void SheetWindow::beginSheet(NSFileDropWindow& mainWindow) {
    if (parentWidget() != &mainWindow) {
        setParent(&mainWindow, SHEET);
        setWindowModality(Qt::WindowModal);
    }
    mainWindow.installEventFilter(this);
    adjustSize();
    place();
    mainWindow.setSheetUp(true);
    show();
}

// At the upper edge of the main window's contents, in the middle.
void SheetWindow::place() {
    const QRect form = parentWidget()->geometry();
    move(form.center().x() - width() / 2, form.top());
}

bool SheetWindow::eventFilter(QObject* watched, QEvent* event) {
    const bool hasMoved = event->type() == QEvent::Move || event->type() == QEvent::Resize;
    if (watched == parentWidget() && hasMoved && isVisible()) {
        place();
    }
    return QDialog::eventFilter(watched, event);
}

void SheetWindow::endSheet() {
    hide();
    if (auto* mainWindow = dynamic_cast<NSFileDropWindow*>(parentWidget())) {
        mainWindow->removeEventFilter(this);
        mainWindow->setSheetUp(false);
    }
}

void SheetWindow::reject() {}

// Its own edge, as there is no frame around it.
void SheetWindow::paintEvent(QPaintEvent* event) {
    QDialog::paintEvent(event);
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Shadow));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void SheetWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
}

} // namespace flashwriter
