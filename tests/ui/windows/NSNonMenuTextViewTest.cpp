#include "ui/NSNonMenuTextView.h"
#include "tests/ui/windows/Keys.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QTest>
#include <QTextEdit>
#include <QVBoxLayout>

namespace flashwriter::testing {

// The shortcuts of the log view, on itself and on other controls of its window.
class NSNonMenuTextViewTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void selectsAll();
    void undoesWhatCanBeUndone();
    void cutsASelection();
    void copiesASelection();
    void pastes();
    void goesByTheSelectionOfEitherDirection();
    void looksAtCommandPressesOnly();
    void takesOtherModifiersBesideCommand();
    void knowsNoOtherKey();
    void goesByTheMeaningOfAKeyWithoutAPosition();
    void worksOnTheViewWithTheFocus_data();
    void worksOnTheViewWithTheFocus();
    void leavesALineAlone();
    void needsAFirstResponder();

private:
    bool perform(quint32 scanCode, Qt::Key key = Qt::Key_unknown) {
        QKeyEvent event = keyEvent(scanCode, key);
        return m_view->performKeyEquivalent(&event);
    }
    void select(int from, int to) {
        QTextCursor cursor = m_view->textCursor();
        cursor.setPosition(from);
        cursor.setPosition(to, QTextCursor::KeepAnchor);
        m_view->setTextCursor(cursor);
    }
    QString selected() const { return m_view->textCursor().selectedText(); }
    static QString clipboard() { return QApplication::clipboard()->text(); }

    std::unique_ptr<QWidget> m_window;
    NSNonMenuTextView* m_view = nullptr;
};

void NSNonMenuTextViewTest::init() {
    m_window = std::make_unique<QWidget>();
    auto* layout = new QVBoxLayout(m_window.get());
    m_view = new NSNonMenuTextView;
    layout->addWidget(m_view);
    m_view->setPlainText("one two three");
    m_view->setFocus();
    QApplication::clipboard()->setText("before");
}

void NSNonMenuTextViewTest::selectsAll() {
    QVERIFY(perform(SCAN_A));
    QCOMPARE(selected(), QString("one two three"));
    m_view->clear();
    QVERIFY(perform(SCAN_A)); // of nothing, too
    QCOMPARE(selected(), QString());
}

void NSNonMenuTextViewTest::undoesWhatCanBeUndone() {
    QVERIFY(!perform(SCAN_Z));
    m_view->insertPlainText("zero ");
    QCOMPARE(m_view->toPlainText(), QString("zero one two three"));
    QVERIFY(perform(SCAN_Z));
    QCOMPARE(m_view->toPlainText(), QString("one two three"));
    QVERIFY(!perform(SCAN_Z));
    QCOMPARE(m_view->toPlainText(), QString("one two three"));
}

void NSNonMenuTextViewTest::cutsASelection() {
    QVERIFY(!perform(SCAN_X));
    QCOMPARE(clipboard(), QString("before"));
    select(4, 8);
    QVERIFY(perform(SCAN_X));
    QCOMPARE(m_view->toPlainText(), QString("one three"));
    QCOMPARE(clipboard(), QString("two "));
    QVERIFY(!perform(SCAN_X));
}

void NSNonMenuTextViewTest::copiesASelection() {
    QVERIFY(!perform(SCAN_C));
    QCOMPARE(clipboard(), QString("before"));
    select(4, 7);
    QVERIFY(perform(SCAN_C));
    QCOMPARE(clipboard(), QString("two"));
    QCOMPARE(m_view->toPlainText(), QString("one two three"));
    QCOMPARE(selected(), QString("two"));
}

void NSNonMenuTextViewTest::pastes() {
    QVERIFY(perform(SCAN_V));
    QCOMPARE(m_view->toPlainText(), QString("beforeone two three"));
    select(0, 9);
    QVERIFY(perform(SCAN_V));
    QCOMPARE(m_view->toPlainText(), QString("before two three"));
    QApplication::clipboard()->clear();
    QVERIFY(perform(SCAN_V)); // there is no condition
    QCOMPARE(m_view->toPlainText(), QString("before two three"));
}

void NSNonMenuTextViewTest::goesByTheSelectionOfEitherDirection() {
    select(7, 4);
    QVERIFY(perform(SCAN_C));
    QCOMPARE(clipboard(), QString("two"));
}

void NSNonMenuTextViewTest::looksAtCommandPressesOnly() {
    select(4, 7);
    for (const quint32 code : {SCAN_A, SCAN_Z, SCAN_X, SCAN_C, SCAN_V}) {
        for (const auto type : {QEvent::KeyRelease, QEvent::ShortcutOverride}) {
            QKeyEvent event = keyEvent(code, Qt::Key_C, "c", Qt::ControlModifier, type);
            QVERIFY(!m_view->performKeyEquivalent(&event));
        }
        for (const auto modifier : {Qt::NoModifier, Qt::ShiftModifier, Qt::AltModifier,
                                    Qt::MetaModifier, Qt::KeypadModifier}) {
            QKeyEvent event = keyEvent(code, Qt::Key_C, "c", modifier);
            QVERIFY(!m_view->performKeyEquivalent(&event));
        }
    }
    QCOMPARE(selected(), QString("two"));
    QCOMPARE(clipboard(), QString("before"));
}

void NSNonMenuTextViewTest::takesOtherModifiersBesideCommand() {
    select(4, 7);
    for (const auto modifier : {Qt::ShiftModifier, Qt::AltModifier, Qt::MetaModifier}) {
        QKeyEvent event = keyEvent(SCAN_A, Qt::Key_A, "A", Qt::ControlModifier | modifier);
        QVERIFY(m_view->performKeyEquivalent(&event));
    }
    QCOMPARE(selected(), QString("one two three"));
}

void NSNonMenuTextViewTest::knowsNoOtherKey() {
    select(4, 7);
    QVERIFY(!perform(SCAN_B, Qt::Key_B));
    QVERIFY(!perform(SCAN_I, Qt::Key_C)); // a layout that has its C there
    QCOMPARE(clipboard(), QString("before"));
}

void NSNonMenuTextViewTest::goesByTheMeaningOfAKeyWithoutAPosition() {
    select(4, 7);
    QVERIFY(!perform(0, Qt::Key_B));
    QVERIFY(perform(0, Qt::Key_C));
    QCOMPARE(clipboard(), QString("two"));
}

void NSNonMenuTextViewTest::worksOnTheViewWithTheFocus_data() {
    QTest::addColumn<bool>("isRich");
    QTest::newRow("plain text") << false;
    QTest::newRow("rich text") << true;
}

void NSNonMenuTextViewTest::worksOnTheViewWithTheFocus() {
    QFETCH(bool, isRich);
    QWidget* other = isRich ? static_cast<QWidget*>(new QTextEdit("other"))
                            : static_cast<QWidget*>(new QPlainTextEdit("other"));
    m_window->layout()->addWidget(other);
    other->setFocus();
    const auto text = [&] { return other->property("plainText").toString(); };
    QVERIFY(!perform(SCAN_Z));
    QVERIFY(!perform(SCAN_X));
    QVERIFY(!perform(SCAN_C));
    QVERIFY(perform(SCAN_A));
    QVERIFY(perform(SCAN_C));
    QCOMPARE(clipboard(), QString("other"));
    QVERIFY(perform(SCAN_X));
    QCOMPARE(text(), QString());
    QVERIFY(perform(SCAN_V));
    QCOMPARE(text(), QString("other"));
    QVERIFY(perform(SCAN_Z));
    QCOMPARE(text(), QString());
    QVERIFY(!perform(SCAN_B));
    QCOMPARE(m_view->toPlainText(), QString("one two three"));
    QCOMPARE(selected(), QString());
}

void NSNonMenuTextViewTest::leavesALineAlone() {
    auto* line = new QLineEdit("line");
    m_window->layout()->addWidget(line);
    line->setFocus();
    line->selectAll();
    for (const quint32 code : {SCAN_A, SCAN_Z, SCAN_X, SCAN_C, SCAN_V}) {
        QVERIFY(!perform(code));
    }
    QCOMPARE(line->text(), QString("line"));
    QCOMPARE(clipboard(), QString("before"));
    QCOMPARE(selected(), QString());
}

void NSNonMenuTextViewTest::needsAFirstResponder() {
    m_view->clearFocus();
    QVERIFY(m_window->focusWidget() == nullptr);
    QVERIFY(!perform(SCAN_A));
    QVERIFY(!perform(SCAN_V));
    QCOMPARE(selected(), QString());
    QCOMPARE(m_view->toPlainText(), QString("one two three"));
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::NSNonMenuTextViewTest)
#include "NSNonMenuTextViewTest.moc"
