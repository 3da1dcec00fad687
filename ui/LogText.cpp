#include "ui/LogText.h"

#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace flashwriter {

namespace {

// Nothing that happens meanwhile can be undone.
class WithoutUndo {
public:
    explicit WithoutUndo(QTextDocument& document) : m_document(document) {
        m_document.setUndoRedoEnabled(false);
    }
    ~WithoutUndo() { m_document.setUndoRedoEnabled(true); }
    WithoutUndo(const WithoutUndo&) = delete;
    WithoutUndo& operator=(const WithoutUndo&) = delete;

private:
    QTextDocument& m_document;
};

// The person's selection; one that reaches to the end would grow with the text appended there.
class Selection {
public:
    explicit Selection(QPlainTextEdit& view)
        : m_view(view), m_anchor(view.textCursor()), m_position(view.textCursor()),
          m_isThere(view.textCursor().hasSelection()) {
        m_anchor.setPosition(m_anchor.anchor());
        for (QTextCursor* end : {&m_anchor, &m_position}) {
            end->setKeepPositionOnInsert(true);
        }
    }
    void restore() {
        QTextCursor cursor = m_view.textCursor();
        if (m_isThere && (cursor.anchor() != m_anchor.position() ||
                          cursor.position() != m_position.position())) {
            cursor.setPosition(m_anchor.position());
            cursor.setPosition(m_position.position(), QTextCursor::KeepAnchor);
            m_view.setTextCursor(cursor);
        }
    }

private:
    QPlainTextEdit& m_view;
    QTextCursor m_anchor; // these two move with their text
    QTextCursor m_position;
    bool m_isThere;
};

int length(const QTextDocument& document) {
    return document.characterCount() - 1; // the document counts the end of its last line, too
}

void removeBeginning(QTextDocument& document, int limit) {
    const int excess = length(document) - limit;
    if (limit <= 0 || excess <= 0) {
        return;
    }
    QTextCursor cursor(&document);
    cursor.setPosition(excess, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
}

} // namespace

void appendLogText(QPlainTextEdit& view, const QString& text, int limit) {
    QTextDocument& document = *view.document();
    QScrollBar& bar = *view.verticalScrollBar();
    const bool followsEnd = bar.value() == bar.maximum();
    const QTextCursor top = view.cursorForPosition(QPoint(0, 0)); // moves with its text
    const int lineOfTop = bar.value() - top.block().firstLineNumber();
    Selection selection(view);
    {
        const WithoutUndo withoutUndo(document);
        QTextCursor cursor(&document);
        cursor.beginEditBlock();
        cursor.movePosition(QTextCursor::End);
        cursor.insertText(text);
        removeBeginning(document, limit);
        cursor.endEditBlock();
    }
    selection.restore();
    bar.setValue(followsEnd ? bar.maximum() : top.block().firstLineNumber() + lineOfTop);
}

void clearLogText(QPlainTextEdit& view) {
    view.clear();
}

} // namespace flashwriter
