// Key presses as a window system reports them: what the layout makes of a key, and where it is.
#pragma once

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPlainTextEdit>

namespace flashwriter::testing {

// Codes of X11 for the keys of an ANSI keyboard.
enum ScanCode : quint32 {
    SCAN_A = 38,
    SCAN_S = 39,
    SCAN_I = 31,
    SCAN_Z = 52,
    SCAN_X = 53,
    SCAN_C = 54,
    SCAN_V = 55,
    SCAN_B = 56,
    SCAN_INSERT = 118
};

inline QKeyEvent keyEvent(quint32 scanCode, Qt::Key key, const QString& text = {},
                          Qt::KeyboardModifiers modifiers = Qt::ControlModifier,
                          QEvent::Type type = QEvent::KeyPress) {
    return {type, key, modifiers, scanCode, 0, 0, text};
}

// Puts "one two three" into the view, the second word selected, and "before" into the clipboard.
inline void prepareThreeWords(QPlainTextEdit& view) {
    view.setPlainText("one two three");
    QTextCursor cursor = view.textCursor();
    cursor.setPosition(4);
    cursor.setPosition(7, QTextCursor::KeepAnchor);
    view.setTextCursor(cursor);
    QGuiApplication::clipboard()->setText("before");
}

} // namespace flashwriter::testing
