#pragma once

#include <QLabel>
#include <QString>

namespace flashwriter {

// Shows a text in a label, in which a very long word may be broken, and gives it to screen readers
// as the label's description. They would not get at it otherwise: a label's text is its name to
// them, and the controls of this program have names of their own.
void setAnnouncedText(QLabel& label, const QString& text);

} // namespace flashwriter
