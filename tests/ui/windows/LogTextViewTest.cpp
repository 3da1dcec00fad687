#include "ui/LogText.h"

#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

namespace flashwriter::testing {

// What the person sees, has selected and can undo while text is appended.
class LogTextViewTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void followsItsEnd();
    void staysWhereThePersonReads();
    void staysWhereThePersonReadsWhenLinesGo();
    void staysAtItsBeginningWhenThatGoes();
    void keepsTheSelection_data();
    void keepsTheSelection();
    void shortensTheSelectionByWhatGoes();
    void goesOnAfterWhatIsTyped();
    void forgetsWhatCouldBeUndone();
    void canBeUndoneAfterwards();
    void clears();

private:
    QString text() const { return m_view->toPlainText(); }
    void fill(int lines) {
        for (int line = 0; line < lines; ++line) {
            appendLogText(*m_view, QString("line %1\n").arg(line, 4, 10, QChar('0')));
        }
    }
    QString firstLineShown() const { return m_view->cursorForPosition({0, 0}).block().text(); }
    void select(int anchor, int position) {
        QTextCursor cursor = m_view->textCursor();
        cursor.setPosition(anchor);
        cursor.setPosition(position, QTextCursor::KeepAnchor);
        m_view->setTextCursor(cursor);
    }

    std::unique_ptr<QPlainTextEdit> m_view;
};

void LogTextViewTest::init() {
    m_view = std::make_unique<QPlainTextEdit>();
    m_view->resize(300, 150);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
}

void LogTextViewTest::followsItsEnd() {
    QScrollBar& bar = *m_view->verticalScrollBar();
    fill(3);
    QCOMPARE(bar.maximum(), 0);
    fill(100);
    QVERIFY(bar.maximum() > 50);
    QCOMPARE(bar.value(), bar.maximum());
    appendLogText(*m_view, "next\nlines\n", 500);
    QCOMPARE(bar.value(), bar.maximum());
    QVERIFY(m_view->cursorForPosition(m_view->viewport()->rect().bottomRight()).atEnd());
}

void LogTextViewTest::staysWhereThePersonReads() {
    fill(100);
    m_view->verticalScrollBar()->setValue(40);
    QCOMPARE(firstLineShown(), QString("line 0040"));
    fill(10);
    QCOMPARE(firstLineShown(), QString("line 0040"));
    QCOMPARE(m_view->verticalScrollBar()->value(), 40);
}

void LogTextViewTest::staysWhereThePersonReadsWhenLinesGo() {
    fill(100); // of ten characters each
    m_view->verticalScrollBar()->setValue(40);
    appendLogText(*m_view, "further\n", 708);
    QCOMPARE(text().left(10), QString("line 0030\n"));
    QCOMPARE(firstLineShown(), QString("line 0040"));
    QCOMPARE(m_view->verticalScrollBar()->value(), 10);
}

void LogTextViewTest::staysAtItsBeginningWhenThatGoes() {
    fill(100);
    m_view->verticalScrollBar()->setValue(40);
    appendLogText(*m_view, "further\n", 308);
    QCOMPARE(firstLineShown(), QString("line 0070"));
    QCOMPARE(m_view->verticalScrollBar()->value(), 0);
}

void LogTextViewTest::keepsTheSelection_data() {
    QTest::addColumn<int>("anchor");
    QTest::addColumn<int>("position");
    QTest::newRow("in the middle") << 2 << 5;
    QTest::newRow("backwards") << 5 << 2;
    QTest::newRow("to the end") << 2 << 9;
    QTest::newRow("from the end") << 9 << 2;
    QTest::newRow("all") << 0 << 9;
}

// What the person wants to copy does not grow under the hand.
void LogTextViewTest::keepsTheSelection() {
    QFETCH(int, anchor);
    QFETCH(int, position);
    appendLogText(*m_view, "abcdefghi");
    select(anchor, position);
    const QString selected = m_view->textCursor().selectedText();
    appendLogText(*m_view, "jkl");
    QCOMPARE(m_view->textCursor().selectedText(), selected);
    QCOMPARE(m_view->textCursor().anchor(), anchor);
    QCOMPARE(m_view->textCursor().position(), position);
}

void LogTextViewTest::shortensTheSelectionByWhatGoes() {
    appendLogText(*m_view, "abcdefghi");
    select(2, 9);
    appendLogText(*m_view, "jkl", 8);
    QCOMPARE(m_view->textCursor().selectedText(), QString("efghi"));
    appendLogText(*m_view, "mnopqrst", 8);
    QVERIFY(!m_view->textCursor().hasSelection());
}

void LogTextViewTest::goesOnAfterWhatIsTyped() {
    appendLogText(*m_view, "ab");
    m_view->moveCursor(QTextCursor::End);
    appendLogText(*m_view, "c");
    m_view->insertPlainText("typed");
    appendLogText(*m_view, "d");
    QCOMPARE(text(), QString("abctypedd"));
}

void LogTextViewTest::forgetsWhatCouldBeUndone() {
    m_view->insertPlainText("typed");
    QVERIFY(m_view->document()->isUndoAvailable());
    appendLogText(*m_view, "appended");
    QVERIFY(!m_view->document()->isUndoAvailable());
    QVERIFY(!m_view->document()->isRedoAvailable());
    m_view->undo();
    QCOMPARE(text(), QString("typedappended"));
}

void LogTextViewTest::canBeUndoneAfterwards() {
    appendLogText(*m_view, "appended");
    m_view->moveCursor(QTextCursor::Start);
    m_view->insertPlainText("typed ");
    QVERIFY(m_view->document()->isUndoAvailable());
    m_view->undo();
    QCOMPARE(text(), QString("appended"));
}

void LogTextViewTest::clears() {
    fill(100);
    m_view->insertPlainText("typed");
    clearLogText(*m_view);
    QCOMPARE(text(), QString());
    QVERIFY(!m_view->document()->isUndoAvailable());
    appendLogText(*m_view, "new");
    QCOMPARE(text(), QString("new"));
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::LogTextViewTest)
#include "LogTextViewTest.moc"
