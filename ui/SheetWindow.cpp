#include "ui/SheetWindow.h"

#include "ui/NSFileDropWindow.h"

#include <QCloseEvent>

namespace flashwriter {

namespace {

// A sheet on systems that have them; elsewhere a dialog with a title and no buttons in it.
constexpr Qt::WindowFlags SHEET = Qt::Sheet | Qt::CustomizeWindowHint | Qt::WindowTitleHint;

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

void SheetWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
}

} // namespace flashwriter
