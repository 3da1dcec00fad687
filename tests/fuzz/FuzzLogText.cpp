// The log view's text and its limit, against a plain string.
//
// Input: the pieces' texts, as UTF-8; from the end of it, switches and size of each.
#include "tests/fuzz/Require.h"
#include "ui/LogText.h"

#include <QTextCursor>

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>

namespace flashwriter::fuzz {
namespace {

constexpr int LIMIT = 20;
constexpr std::uint8_t IS_LIMITED = 0x01;
constexpr std::uint8_t SELECTS = 0x02; // the person selects before the text comes
constexpr std::uint8_t CLEARS = 0x04;

// The ends of lines as a document keeps them, which takes its own two marks for such, too.
QString asKept(QString text) {
    text.replace("\r\n", "\n");
    for (const char16_t end : {u'\r', u'\n', u'\xFDD0', u'\xFDD1'}) {
        text.replace(QChar(end), QChar::ParagraphSeparator);
    }
    return text;
}

QString textIn(const QPlainTextEdit& view) {
    QTextCursor all(view.document());
    all.select(QTextCursor::Document);
    return all.selectedText();
}

void select(QPlainTextEdit& view, std::uint8_t from, std::uint8_t to) {
    const int length = view.document()->characterCount();
    QTextCursor cursor = view.textCursor();
    cursor.setPosition(from % length);
    cursor.setPosition(to % length, QTextCursor::KeepAnchor);
    view.setTextCursor(cursor);
}

void append(QPlainTextEdit& view, QString& model, const QString& text, int limit) {
    const QTextCursor before = view.textCursor();
    const QString selected = before.selectedText();
    model += asKept(text);
    const auto gone = limit > 0 ? std::max<qsizetype>(0, model.size() - limit) : 0;
    model.remove(0, gone);
    const auto left = std::max<qsizetype>(0, before.selectionEnd() - gone) -
                      std::max<qsizetype>(0, before.selectionStart() - gone);

    appendLogText(view, text, limit);
    require(textIn(view) == model, "the end of all the text");
    require(view.textCursor().selectedText() == selected.right(left),
            "a selection loses what goes, and nothing else");
    require(!view.document()->isUndoAvailable(), "nothing can be undone");
}

void run(FuzzedDataProvider& input) {
    QPlainTextEdit view;
    QString model;
    while (input.remaining_bytes() > 0) {
        const auto switches = input.ConsumeIntegral<std::uint8_t>();
        const auto size = input.ConsumeIntegralInRange<std::size_t>(0, 40);
        if ((switches & CLEARS) != 0) {
            clearLogText(view);
            model.clear();
        }
        if ((switches & SELECTS) != 0) {
            select(view, input.ConsumeIntegral<std::uint8_t>(),
                   input.ConsumeIntegral<std::uint8_t>());
        }
        QString text = QString::fromStdString(input.ConsumeBytesAsString(size));
        text.remove(QChar(0)); // of which a board's text has none
        append(view, model, text, (switches & IS_LIMITED) != 0 ? LIMIT : 0);
    }
}

} // namespace
} // namespace flashwriter::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider input(bytes, size);
    flashwriter::fuzz::run(input);
    return 0;
}
