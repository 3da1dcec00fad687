#include "ui/NSNonMenuTextView.h"

#include "ui/KeyPositions.h"

#include <QKeyEvent>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextOption>

#include <algorithm>
#include <array>
#include <utility>

namespace flashwriter {

namespace {

template <class TextView>
bool act(TextView& view, KeyPosition position) {
    const bool hasSelection = view.textCursor().hasSelection();
    switch (position) {
    case KeyPosition::A:
        view.selectAll();
        return true;
    case KeyPosition::Z:
        if (!view.document()->isUndoAvailable()) {
            return false;
        }
        view.undo();
        return true;
    case KeyPosition::X:
        if (hasSelection) {
            view.cut();
        }
        return hasSelection;
    case KeyPosition::C:
        if (hasSelection) {
            view.copy();
        }
        return hasSelection;
    case KeyPosition::V:
        view.paste();
        return true;
    case KeyPosition::Other:
        break;
    }
    return false;
}

bool hasCommand(const QKeyEvent& event) {
    return event.modifiers().testFlag(Qt::ControlModifier); // Command on macOS
}

// Of a key press that no keyboard has sent, which has no position: what its characters mean.
KeyPosition positionByMeaning(const QKeyEvent& event) {
    constexpr std::array<std::pair<QKeySequence::StandardKey, KeyPosition>, 5> MEANINGS{
        {{QKeySequence::SelectAll, KeyPosition::A},
         {QKeySequence::Undo, KeyPosition::Z},
         {QKeySequence::Cut, KeyPosition::X},
         {QKeySequence::Copy, KeyPosition::C},
         {QKeySequence::Paste, KeyPosition::V}}};
    for (const auto& [shortcut, position] : MEANINGS) {
        if (event.matches(shortcut)) {
            return position;
        }
    }
    return KeyPosition::Other;
}

KeyPosition meantPosition(const QKeyEvent& event) {
    return comesFromKeyboard(event) ? keyPosition(event) : positionByMeaning(event);
}

// What the toolkit would do by the characters on the keys.
bool isEditingShortcut(const QKeyEvent& event) {
    if (event.key() == Qt::Key_Insert) {
        return false; // has its meaning on every layout
    }
    constexpr std::array SHORTCUTS{QKeySequence::SelectAll, QKeySequence::Undo,
                                   QKeySequence::Redo,      QKeySequence::Cut,
                                   QKeySequence::Copy,      QKeySequence::Paste};
    return std::any_of(SHORTCUTS.begin(), SHORTCUTS.end(),
                       [&event](auto shortcut) { return event.matches(shortcut); });
}

} // namespace

// A board may send a long text without a blank. To wrap it between words, of which there is one,
// takes the toolkit most of a second each time that something is added to it.
NSNonMenuTextView::NSNonMenuTextView(QWidget* parent) : QPlainTextEdit(parent) {
    setWordWrapMode(QTextOption::WrapAnywhere);
}

void NSNonMenuTextView::rightMouseDown(QMouseEvent* event) {
    event->accept();
}

bool NSNonMenuTextView::performKeyEquivalent(QKeyEvent* event) {
    if (event->type() != QEvent::KeyPress || !hasCommand(*event)) {
        return false;
    }
    QWidget* firstResponder = window()->focusWidget();
    if (auto* plainView = qobject_cast<QPlainTextEdit*>(firstResponder)) {
        return act(*plainView, meantPosition(*event));
    }
    if (auto* richView = qobject_cast<QTextEdit*>(firstResponder)) {
        return act(*richView, meantPosition(*event));
    }
    return false;
}

// Claims the five keys before anybody's shortcuts, and leaves all others with Control to those.
bool NSNonMenuTextView::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (hasCommand(key)) {
            event->setAccepted(meantPosition(key) != KeyPosition::Other);
            return true;
        }
    }
    return QPlainTextEdit::event(event);
}

void NSNonMenuTextView::keyPressEvent(QKeyEvent* event) {
    if (performKeyEquivalent(event)) {
        event->accept();
    } else if (hasCommand(*event) && isEditingShortcut(*event)) {
        event->ignore();
    } else {
        QPlainTextEdit::keyPressEvent(event);
    }
}

void NSNonMenuTextView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) {
        rightMouseDown(event);
    } else {
        QPlainTextEdit::mousePressEvent(event);
    }
}

void NSNonMenuTextView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::RightButton) {
        QPlainTextEdit::mouseReleaseEvent(event);
    }
}

void NSNonMenuTextView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::RightButton) {
        QPlainTextEdit::mouseDoubleClickEvent(event);
    }
}

void NSNonMenuTextView::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
}

} // namespace flashwriter
