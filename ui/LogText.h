// What the program itself does to the log view's text, as opposed to the person. Main thread.
#pragma once

#include <QPlainTextEdit>
#include <QString>

namespace flashwriter {

// Appends text as it is, in one step. With a limit only the last `limit` characters (UTF-16 units)
// of the whole text are kept. A view that is at its end follows it; one that the person has
// scrolled up stays at the lines that it shows. A selection stays as it is, but for what goes. What
// the person could have undone is forgotten: undoing it would mix up the program's text.
void appendLogText(QPlainTextEdit& view, const QString& text, int limit = 0);

// Makes the whole text empty.
void clearLogText(QPlainTextEdit& view);

} // namespace flashwriter
