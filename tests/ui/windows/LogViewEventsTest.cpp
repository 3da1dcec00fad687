#include "tests/ui/windows/Keys.h"
#include "ui/NSNonMenuTextView.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

namespace flashwriter::testing {

// What the log view makes of keys and mouse buttons as they reach it.
class LogViewEventsTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void doesTheShortcutsOfKeysPressed();
    void doesNothingByCharacters_data();
    void doesNothingByCharacters();
    void copiesAndPastesByTheInsertKey();
    void claimsItsKeysBeforeShortcutsOfTheWindow();
    void leavesOtherKeysToShortcutsOfTheWindow();
    void takesWhatIsTyped();
    void keepsTheSelectionOnARightClick();
    void showsNoMenu_data();
    void showsNoMenu();
    void selectsWithTheLeftButton();
    void wrapsAWordAtItsEdge();

private:
    bool send(QKeyEvent event) {
        event.setAccepted(false);
        QCoreApplication::sendEvent(m_view.get(), &event);
        return event.isAccepted();
    }
    bool hasNoMenu() const {
        return QApplication::activePopupWidget() == nullptr &&
               m_view->findChildren<QMenu*>().isEmpty();
    }
    QString selected() const { return m_view->textCursor().selectedText(); }

    std::unique_ptr<NSNonMenuTextView> m_view;
};

void LogViewEventsTest::init() {
    m_view = std::make_unique<NSNonMenuTextView>();
    m_view->resize(300, 100);
    m_view->show();
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    m_view->setFocus();
    prepareThreeWords(*m_view);
}

void LogViewEventsTest::doesTheShortcutsOfKeysPressed() {
    QVERIFY(send(keyEvent(SCAN_C, Qt::Key_J, "j"))); // of a layout that has another letter there
    QCOMPARE(QApplication::clipboard()->text(), QString("two"));
    QVERIFY(send(keyEvent(SCAN_X, Qt::Key_Q, "q")));
    QCOMPARE(m_view->toPlainText(), QString("one  three"));
    QVERIFY(send(keyEvent(SCAN_Z, Qt::Key_W, "w")));
    QCOMPARE(m_view->toPlainText(), QString("one two three"));
    QVERIFY(send(keyEvent(SCAN_A, Qt::Key_Q, "q")));
    QCOMPARE(selected(), QString("one two three"));
    QVERIFY(send(keyEvent(SCAN_V, Qt::Key_K, "k")));
    QCOMPARE(m_view->toPlainText(), QString("two"));
}

void LogViewEventsTest::doesNothingByCharacters_data() {
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("isShifted");
    QTest::newRow("c") << int{Qt::Key_C} << false;
    QTest::newRow("x") << int{Qt::Key_X} << false;
    QTest::newRow("v") << int{Qt::Key_V} << false;
    QTest::newRow("a") << int{Qt::Key_A} << false;
    QTest::newRow("z") << int{Qt::Key_Z} << false;
    QTest::newRow("y") << int{Qt::Key_Y} << false;
    QTest::newRow("Z") << int{Qt::Key_Z} << true;
}

// There is something that could be undone, and then done again.
void LogViewEventsTest::doesNothingByCharacters() {
    QFETCH(int, key);
    QFETCH(bool, isShifted);
    m_view->textCursor().insertText("2");
    m_view->undo();
    m_view->selectAll();
    const auto shift = isShifted ? Qt::ShiftModifier : Qt::NoModifier;
    QVERIFY(!send(keyEvent(SCAN_S, static_cast<Qt::Key>(key), QChar(key).toLower(),
                           Qt::ControlModifier | shift)));
    QCOMPARE(m_view->toPlainText(), QString("one two three"));
    QCOMPARE(selected(), QString("one two three"));
    QCOMPARE(QApplication::clipboard()->text(), QString("before"));
}

// Which is the same key on every layout.
void LogViewEventsTest::copiesAndPastesByTheInsertKey() {
    QVERIFY(send(keyEvent(SCAN_INSERT, Qt::Key_Insert)));
    QCOMPARE(QApplication::clipboard()->text(), QString("two"));
    m_view->moveCursor(QTextCursor::Start);
    QVERIFY(send(keyEvent(SCAN_INSERT, Qt::Key_Insert, {}, Qt::ShiftModifier)));
    QCOMPARE(m_view->toPlainText(), QString("twoone two three"));
}

void LogViewEventsTest::claimsItsKeysBeforeShortcutsOfTheWindow() {
    for (const quint32 code : {SCAN_A, SCAN_Z, SCAN_X, SCAN_C, SCAN_V}) {
        QVERIFY(
            send(keyEvent(code, Qt::Key_O, "o", Qt::ControlModifier, QEvent::ShortcutOverride)));
    }
    QCOMPARE(selected(), QString("two"));
}

void LogViewEventsTest::leavesOtherKeysToShortcutsOfTheWindow() {
    for (const Qt::Key key : {Qt::Key_C, Qt::Key_Q}) {
        QVERIFY(!send(keyEvent(SCAN_S, key, {}, Qt::ControlModifier, QEvent::ShortcutOverride)));
    }
    QVERIFY(send(keyEvent(SCAN_S, Qt::Key_S, "s", {}, QEvent::ShortcutOverride))); // is typed
    QShortcut shortcut(QKeySequence("Ctrl+G"), m_view.get());
    const QSignalSpy activated(&shortcut, &QShortcut::activated);
    QTest::keyClick(m_view->windowHandle(), Qt::Key_G, Qt::ControlModifier);
    QCOMPARE(activated.size(), 1);
    QCOMPARE(QApplication::clipboard()->text(), QString("before"));
}

void LogViewEventsTest::takesWhatIsTyped() {
    QVERIFY(send(keyEvent(SCAN_C, Qt::Key_C, "c", {})));
    QCOMPARE(m_view->toPlainText(), QString("one c three"));
}

void LogViewEventsTest::keepsTheSelectionOnARightClick() {
    QWidget* area = m_view->viewport();
    const QPoint away = m_view->cursorRect().center() + QPoint(60, 0);
    QTest::mouseClick(area, Qt::RightButton, {}, away);
    QCOMPARE(selected(), QString("two"));
    QTest::mouseDClick(area, Qt::RightButton, {}, away);
    QCOMPARE(selected(), QString("two"));
    QTest::mousePress(area, Qt::RightButton, {}, QPoint(5, 5));
    QTest::mouseMove(area, away);
    QTest::mouseRelease(area, Qt::RightButton, {}, away);
    QCOMPARE(selected(), QString("two"));
    QVERIFY(hasNoMenu());
}

void LogViewEventsTest::showsNoMenu_data() {
    QTest::addColumn<int>("reason");
    QTest::newRow("mouse") << int{QContextMenuEvent::Mouse};
    QTest::newRow("key") << int{QContextMenuEvent::Keyboard};
    QTest::newRow("other") << int{QContextMenuEvent::Other};
}

// The mouse is over the viewport, the key goes to the view.
void LogViewEventsTest::showsNoMenu() {
    QFETCH(int, reason);
    QWidget* receiver = reason == QContextMenuEvent::Keyboard ? m_view.get() : m_view->viewport();
    QContextMenuEvent event(static_cast<QContextMenuEvent::Reason>(reason), QPoint(5, 5),
                            receiver->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(receiver, &event);
    QVERIFY(event.isAccepted()); // so nobody behind it shows one
    QVERIFY(hasNoMenu());
    QCOMPARE(selected(), QString("two"));
}

void LogViewEventsTest::selectsWithTheLeftButton() {
    QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, QPoint(10, 10));
    QCOMPARE(selected(), QString("one"));
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, QPoint(200, 50));
    QCOMPARE(selected(), QString());
}

// As terminals do: to look for a better place in a long text without blanks, which a board may
// send, takes so long that nothing else can be done meanwhile.
void LogViewEventsTest::wrapsAWordAtItsEdge() {
    m_view->setPlainText("word " + QString(1000, 'x'));
    const QTextLayout& layout = *m_view->document()->firstBlock().layout();
    QVERIFY(layout.lineCount() > 5);
    QVERIFY(layout.lineAt(0).textLength() > 20);
    QCOMPARE(m_view->horizontalScrollBar()->maximum(), 0);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::LogViewEventsTest)
#include "LogViewEventsTest.moc"
