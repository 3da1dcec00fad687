// What is in the windows of this process. All of it on the thread of the windows.
#pragma once

#include "tests/kernel/hands/Message.h"

#include <QString>
#include <QWidget>

namespace flashwriter::kernel {

// The widget with this object name, one that can be seen before one that cannot; null for none.
QWidget* findWidget(const QString& name);

// One that can be seen. Throws std::runtime_error when there is none.
QWidget& visibleWidget(const QString& name);

// What a field, a combo box, a label, a button or a log shows; a progress bar's value in digits; a
// window's title.
QString textOf(const QWidget& widget);

// Those that can be seen: object name and title, by turns.
Words windowWords();

// All windows as they lie over each other, as a PNG. Throws std::runtime_error when there is no
// window or the file cannot be written.
void pictureWindows(const QString& file);

} // namespace flashwriter::kernel
