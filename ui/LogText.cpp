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
    {
        const WithoutUndo withoutUndo(document);
        QTextCursor cursor(&document);
        cursor.beginEditBlock();
        cursor.movePosition(QTextCursor::End);
        cursor.insertText(text);
        removeBeginning(document, limit);
        cursor.endEditBlock();
    }
    bar.setValue(followsEnd ? bar.maximum() : top.block().firstLineNumber() + lineOfTop);
}

void clearLogText(QPlainTextEdit& view) {
    view.clear();
}

} // namespace flashwriter
