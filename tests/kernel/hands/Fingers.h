// Mouse and keys on the windows of this process, by way of what the window system would send: a
// window that another one blocks does not get them. All of it on the thread of the windows.
#pragma once

#include <QString>
#include <QWidget>

namespace flashwriter::kernel {

// In its middle, with the left button. Returns when whatever the click sets off has returned.
void clickOn(QWidget& widget);

// Puts the text into a field, or that of a combo box, in place of what it held, key by key. Throws
// std::runtime_error when it does not get there.
void typeInto(QWidget& widget, const QString& text);

// Opens a combo box's list with the mouse and clicks on the item of this text. Throws
// std::runtime_error when that cannot be done, or the box does not show the item then.
void chooseFrom(QWidget& widget, const QString& item);

// Presses keys such as "Return" or "Alt+W" in the window that has the keyboard.
void pressKeys(const QString& keys);

// Throws std::runtime_error when no window has it.
void requireKeyboard();

// As the button in a window's frame does.
void closeByFrame(QWidget& window);

} // namespace flashwriter::kernel
