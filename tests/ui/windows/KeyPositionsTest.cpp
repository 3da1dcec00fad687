#include "ui/KeyPositions.h"
#include "tests/ui/windows/Keys.h"

#include <QTest>

namespace flashwriter::testing {

class KeyPositionsTest : public QObject {
    Q_OBJECT

private slots:
    void knowsScanCodes_data();
    void knowsScanCodes();
    void knowsVirtualKeysOfMacOS_data();
    void knowsVirtualKeysOfMacOS();
    void doesNotLookAtCharacters();
    void knowsNoKeyThatNoKeyboardHasSent();
    void goesByTheWindowSystemInUse();
};

void KeyPositionsTest::knowsScanCodes_data() {
    QTest::addColumn<quint32>("code");
    QTest::addColumn<KeyPosition>("position");
    QTest::newRow("A") << quint32{38} << KeyPosition::A;
    QTest::newRow("Z") << quint32{52} << KeyPosition::Z;
    QTest::newRow("X") << quint32{53} << KeyPosition::X;
    QTest::newRow("C") << quint32{54} << KeyPosition::C;
    QTest::newRow("V") << quint32{55} << KeyPosition::V;
    for (const quint32 code : {0U, 6U, 7U, 8U, 9U, 37U, 39U, 51U, 56U, ~0U}) {
        QTest::addRow("%u", code) << code << KeyPosition::Other;
    }
}

// Whatever its virtual key is.
void KeyPositionsTest::knowsScanCodes() {
    QFETCH(quint32, code);
    for (const quint32 virtualKey : {0U, 8U, 99U}) {
        const QKeyEvent event(QEvent::KeyPress, Qt::Key_Q, Qt::ControlModifier, code, virtualKey,
                              0x100108);
        QTEST(keyPosition(event, false), "position");
    }
}

void KeyPositionsTest::knowsVirtualKeysOfMacOS_data() {
    QTest::addColumn<quint32>("code");
    QTest::addColumn<KeyPosition>("position");
    QTest::newRow("A") << quint32{0} << KeyPosition::A;
    QTest::newRow("Z") << quint32{6} << KeyPosition::Z;
    QTest::newRow("X") << quint32{7} << KeyPosition::X;
    QTest::newRow("C") << quint32{8} << KeyPosition::C;
    QTest::newRow("V") << quint32{9} << KeyPosition::V;
    for (const quint32 code : {1U, 5U, 10U, 38U, 54U, 65535U}) {
        QTest::addRow("%u", code) << code << KeyPosition::Other;
    }
}

void KeyPositionsTest::knowsVirtualKeysOfMacOS() {
    QFETCH(quint32, code);
    for (const quint32 scanCode : {0U, 54U}) { // the first is what that window system gives
        const QKeyEvent event(QEvent::KeyPress, Qt::Key_Q, Qt::ControlModifier, scanCode, code,
                              0x100108);
        QTEST(keyPosition(event, true), "position");
    }
}

void KeyPositionsTest::doesNotLookAtCharacters() {
    QCOMPARE(keyPosition(keyEvent(SCAN_C, Qt::Key_J, "j"), false), KeyPosition::C); // Dvorak
    QCOMPARE(keyPosition(keyEvent(SCAN_I, Qt::Key_C, "c"), false), KeyPosition::Other);
    QCOMPARE(keyPosition(keyEvent(SCAN_A, Qt::Key_Q, "q"), false), KeyPosition::A); // French
    QCOMPARE(keyPosition(keyEvent(SCAN_Z, Qt::Key_W, "w"), false), KeyPosition::Z);
}

// A made-up event has zeros for all that the hardware would tell, and one of macOS's keys is 0.
void KeyPositionsTest::knowsNoKeyThatNoKeyboardHasSent() {
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_C, Qt::Key_Q}) {
        const QKeyEvent event(QEvent::KeyPress, key, Qt::ControlModifier);
        QCOMPARE(keyPosition(event, false), KeyPosition::Other);
        QCOMPARE(keyPosition(event, true), KeyPosition::Other);
    }
}

void KeyPositionsTest::goesByTheWindowSystemInUse() {
    QVERIFY(QGuiApplication::platformName() != "cocoa");
    QCOMPARE(keyPosition(keyEvent(SCAN_V, Qt::Key_V)), KeyPosition::V);
    const QKeyEvent ofMacOS(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier, 0, 9, 0x100108);
    QCOMPARE(keyPosition(ofMacOS), KeyPosition::Other);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::KeyPositionsTest)
#include "KeyPositionsTest.moc"
