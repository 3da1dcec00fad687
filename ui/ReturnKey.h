#pragma once

class QAbstractButton;
class QKeyEvent;
class QLineEdit;

namespace flashwriter {

// Whether an event is about Return, or Enter of the number keys.
bool isReturn(const QKeyEvent& event);

// What a person who holds Return down does not mean: to press buttons again and again.
bool isRepeatedReturn(const QKeyEvent& event);

// From now on the button takes no notice of such a Return.
void ignoreRepeatedReturn(QAbstractButton& button);

// From now on Return in the field presses this button, and no default button. Both are borrowed and
// belong to the same window.
void pressOnReturn(QLineEdit& field, QAbstractButton& button);

} // namespace flashwriter
