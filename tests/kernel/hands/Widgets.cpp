#include "tests/kernel/hands/Widgets.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QProgressBar>

#include <algorithm>
#include <stdexcept>

namespace flashwriter::kernel {

namespace {

int depth(const QWidget& widget) {
    return widget.parentWidget() == nullptr ? 0 : 1 + depth(*widget.parentWidget());
}

// A window that belongs to another one lies over it.
QWidgetList visibleWindows() {
    QWidgetList windows;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible()) {
            windows.append(window);
        }
    }
    std::stable_sort(windows.begin(), windows.end(),
                     [](QWidget* one, QWidget* other) { return depth(*one) < depth(*other); });
    return windows;
}

} // namespace

QWidget* findWidget(const QString& name) {
    QWidget* found = nullptr;
    for (QWidget* widget : QApplication::allWidgets()) {
        if (widget->objectName() == name && (found == nullptr || widget->isVisible())) {
            found = widget;
        }
    }
    return found;
}

QWidget& visibleWidget(const QString& name) {
    QWidget* widget = findWidget(name);
    if (widget == nullptr || !widget->isVisible()) {
        throw std::runtime_error("no " + name.toStdString() + " is to be seen");
    }
    return *widget;
}

QString textOf(const QWidget& widget) {
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        return label->text();
    }
    if (const auto* field = qobject_cast<const QLineEdit*>(&widget)) {
        return field->text();
    }
    if (const auto* list = qobject_cast<const QComboBox*>(&widget)) {
        return list->currentText();
    }
    if (const auto* log = qobject_cast<const QPlainTextEdit*>(&widget)) {
        return log->toPlainText();
    }
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
        return button->text();
    }
    if (const auto* bar = qobject_cast<const QProgressBar*>(&widget)) {
        return QString::number(bar->value());
    }
    return widget.windowTitle();
}

Words windowWords() {
    Words words;
    for (const QWidget* window : visibleWindows()) {
        words.push_back(window->objectName().toStdString());
        words.push_back(window->windowTitle().toStdString());
    }
    return words;
}

void pictureWindows(const QString& file) {
    QRect screen;
    for (const QWidget* window : visibleWindows()) {
        screen |= window->geometry();
    }
    QPixmap picture(screen.size());
    picture.fill(Qt::black);
    {
        QPainter painter(&picture);
        for (QWidget* window : visibleWindows()) {
            painter.drawPixmap(window->geometry().topLeft() - screen.topLeft(), window->grab());
        }
    }
    if (!picture.save(file, "PNG")) {
        throw std::runtime_error("no picture " + file.toStdString());
    }
}

} // namespace flashwriter::kernel
