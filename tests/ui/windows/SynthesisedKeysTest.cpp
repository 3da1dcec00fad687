#include "tests/ui/windows/Keys.h"
#include "ui/NSNonMenuTextView.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>

namespace flashwriter::testing {

// Key presses that no keyboard has sent: tools for dictation or for automation, and screen
// keyboards. They are nowhere on a keyboard, so what they stand for is all that there is to go by.
class SynthesisedKeysTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void doWhatTheyStandFor();
    void copyByAKeyClick();
    void doNothingFromAnotherPosition();

private:
    bool press(quint32 scanCode, Qt::Key key) {
        QKeyEvent event = keyEvent(scanCode, key);
        event.setAccepted(false);
        QCoreApplication::sendEvent(m_view.get(), &event);
        return event.isAccepted();
    }
    static QString clipboard() { return QApplication::clipboard()->text(); }

    std::unique_ptr<NSNonMenuTextView> m_view;
};

void SynthesisedKeysTest::init() {
    m_view = std::make_unique<NSNonMenuTextView>();
    m_view->show();
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    m_view->setFocus();
    prepareThreeWords(*m_view);
}

void SynthesisedKeysTest::doWhatTheyStandFor() {
    QVERIFY(keyEvent(0, Qt::Key_C).matches(QKeySequence::Copy));
    QVERIFY(press(0, Qt::Key_C));
    QCOMPARE(clipboard(), QString("two"));
    QVERIFY(press(0, Qt::Key_X));
    QCOMPARE(m_view->toPlainText(), QString("one  three"));
    QVERIFY(press(0, Qt::Key_V));
    QCOMPARE(m_view->toPlainText(), QString("one two three"));
    QVERIFY(press(0, Qt::Key_A));
    QCOMPARE(m_view->textCursor().selectedText(), QString("one two three"));
}

void SynthesisedKeysTest::copyByAKeyClick() {
    QTest::keyClick(m_view.get(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(clipboard(), QString("two"));
    QCOMPARE(m_view->toPlainText(), QString("one two three"));
}

// There a keyboard's layout has put the letter, which does not matter.
void SynthesisedKeysTest::doNothingFromAnotherPosition() {
    for (const quint32 scanCode : {SCAN_I, SCAN_S, SCAN_B}) {
        press(scanCode, Qt::Key_C);
        QCOMPARE(clipboard(), QString("before"));
        press(scanCode, Qt::Key_X);
        QCOMPARE(m_view->toPlainText(), QString("one two three"));
    }
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::SynthesisedKeysTest)
#include "SynthesisedKeysTest.moc"
