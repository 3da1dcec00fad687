#include "tests/kernel/hands/Fingers.h"

#include "tests/kernel/hands/Widgets.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QGuiApplication>
#include <QKeySequence>
#include <QTest>
#include <QWindow>

#include <stdexcept>

namespace flashwriter::kernel {

namespace {

// place: within the widget.
void clickAt(QWidget& widget, QPoint place) {
    QWidget& window = *widget.window();
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, widget.mapTo(&window, place));
}

} // namespace

void clickOn(QWidget& widget) {
    clickAt(widget, widget.rect().center());
}

void typeInto(QWidget& widget, const QString& text) {
    clickOn(widget);
    requireKeyboard();
    pressKeys("Ctrl+A");
    pressKeys("Delete");
    for (const QChar letter : text) {
        const auto key = static_cast<Qt::Key>(letter.toUpper().unicode());
        QTest::sendKeyEvent(QTest::Click, QGuiApplication::focusWindow(), key, QString(letter), {});
    }
    if (textOf(widget) != text) {
        throw std::runtime_error(widget.objectName().toStdString() + " holds \"" +
                                 textOf(widget).toStdString() + "\"");
    }
}

void chooseFrom(QWidget& widget, const QString& item) {
    constexpr int FROM_RIGHT = 8; // where the box's arrow is
    auto* list = qobject_cast<QComboBox*>(&widget);
    const int index = list == nullptr ? -1 : list->findText(item);
    if (index < 0) {
        throw std::runtime_error(widget.objectName().toStdString() + " has no such item");
    }
    clickAt(*list, QPoint(list->width() - FROM_RIGHT, list->height() / 2));
    QAbstractItemView& items = *list->view();
    if (!items.isVisible()) {
        throw std::runtime_error("the list of " + widget.objectName().toStdString() +
                                 " does not open");
    }
    const QModelIndex place = items.model()->index(index, list->modelColumn());
    items.scrollTo(place);
    clickAt(*items.viewport(), items.visualRect(place).center());
    if (list->currentIndex() != index || items.isVisible()) {
        throw std::runtime_error(widget.objectName().toStdString() + " shows \"" +
                                 textOf(*list).toStdString() + "\"");
    }
}

void pressKeys(const QString& keys) {
    QTest::keySequence(QGuiApplication::focusWindow(), QKeySequence(keys));
}

void requireKeyboard() {
    if (QGuiApplication::focusWindow() == nullptr) {
        throw std::runtime_error("no window has the keyboard");
    }
}

void closeByFrame(QWidget& window) {
    window.window()->windowHandle()->close();
}

} // namespace flashwriter::kernel
