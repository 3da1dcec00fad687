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
    adjustSize();
    const QRect form = mainWindow.geometry();
    move(form.center().x() - width() / 2, form.top());
    mainWindow.setSheetUp(true);
    show();
}

void SheetWindow::endSheet() {
    hide();
    if (auto* mainWindow = dynamic_cast<NSFileDropWindow*>(parentWidget())) {
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
