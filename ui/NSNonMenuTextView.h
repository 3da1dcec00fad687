#pragma once

#include <QPlainTextEdit>

namespace flashwriter {

// The log view: a text that shows no context menu, and whose editing shortcuts follow the positions
// of the keys and not the keyboard's layout. Main thread.
class NSNonMenuTextView : public QPlainTextEdit {
public:
    explicit NSNonMenuTextView(QWidget* parent = nullptr);

    // Does nothing: no menu, and the selection stays.
    static void rightMouseDown(QMouseEvent* event);

    // Whether a key press with Control (Command on macOS) was one of the shortcuts for select all,
    // undo, cut, copy and paste, had something to work on, and is done now. It works on the text
    // view that has the window's focus, of whatever class, this one or another.
    bool performKeyEquivalent(QKeyEvent* event);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
};

} // namespace flashwriter
