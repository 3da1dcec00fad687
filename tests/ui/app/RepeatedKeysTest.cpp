// A key that is held, and a click too many, do what was meant once.
#include "board/VirtualBoard.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/ResultWindowAnswer.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTest>

namespace flashwriter::testing {

namespace {

struct KeysFixture : MainWindowFixture {
    explicit KeysFixture(bool isSilent = false) {
        board::BoardOptions options;
        options.pace = false;
        options.target.invertedDtr = isSilent; // it does not answer while it is asked
        board.start(options);
        choosePort(board.portPath());
        window.show();
        window.activateWindow();
    }
    ~KeysFixture() {
        const ResultWindowAnswer answer;
        static_cast<void>(QTest::qWaitFor([this] { return !window.isSheetUp(); }, 10000));
    }
    KeysFixture(const KeysFixture&) = delete;
    KeysFixture& operator=(const KeysFixture&) = delete;

    bool focus(QWidget& widget) {
        widget.setFocus();
        return QTest::qWaitForWindowActive(&window) && widget.hasFocus();
    }

    board::VirtualBoard board;
};

// What a keyboard sends while the key is held: first the press itself, unless it has been before.
void repeat(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers, const QString& text) {
    for (int i = 0; i < 3; ++i) {
        QTest::simulateEvent(&widget, true, key, modifiers, text, true);
    }
}

void repeatReturn(QWidget& widget) {
    repeat(widget, Qt::Key_Return, Qt::NoModifier, "\r");
}

void postMouse(QWidget& widget, QEvent::Type type) {
    const QPointF at = widget.rect().center();
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QCoreApplication::postEvent(&widget, new QMouseEvent(type, at, widget.mapToGlobal(at),
                                                         Qt::LeftButton, held, Qt::NoModifier));
}

} // namespace

class RepeatedKeysTest : public QObject {
    Q_OBJECT

private slots:
    void twoClicksLeaveTheMonitorOpen_data();
    void twoClicksLeaveTheMonitorOpen();
    void aHeldReturnOnOpenTogglesOnce();
    void aHeldShortcutTogglesOnce();
    void repeatsAloneToggleNothing();
    void repeatsStartNoWrite();
    void repeatsOfWritesLetterStartNoWrite();
    void returnInTheMonitorsSpeedOpens();
};

void RepeatedKeysTest::twoClicksLeaveTheMonitorOpen_data() {
    QTest::addColumn<int>("second");
    QTest::newRow("double click") << int{QEvent::MouseButtonDblClick};
    QTest::newRow("slower") << int{QEvent::MouseButtonPress};
}

// Both come before the first has done its work, which keeps the main thread busy.
void RepeatedKeysTest::twoClicksLeaveTheMonitorOpen() {
    QFETCH(const int, second);
    KeysFixture main(true);
    QVERIFY(QTest::qWaitForWindowActive(&main.window));
    postMouse(main.monitorButton, QEvent::MouseButtonPress);
    postMouse(main.monitorButton, QEvent::MouseButtonRelease);
    postMouse(main.monitorButton, static_cast<QEvent::Type>(second));
    postMouse(main.monitorButton, QEvent::MouseButtonRelease);
    QCoreApplication::processEvents();
    QVERIFY(main.delegate.isMonitorOpen());
    QTest::qWait(QApplication::doubleClickInterval() + 100);
    QVERIFY(main.delegate.isMonitorOpen());
    QTest::mouseClick(&main.monitorButton, Qt::LeftButton);
    QVERIFY(!main.delegate.isMonitorOpen());
}

void RepeatedKeysTest::aHeldReturnOnOpenTogglesOnce() {
    KeysFixture main;
    QVERIFY(main.focus(main.monitorButton));
    QTest::keyPress(&main.monitorButton, Qt::Key_Return);
    QVERIFY(main.delegate.isMonitorOpen());
    repeatReturn(main.monitorButton);
    QVERIFY(main.delegate.isMonitorOpen());
    QCOMPARE(main.count("DTR=true"), 1);
}

void RepeatedKeysTest::aHeldShortcutTogglesOnce() {
    KeysFixture main;
    QVERIFY(main.focus(main.logView));
    QTest::keyPress(&main.logView, Qt::Key_O, Qt::AltModifier);
    QVERIFY(main.delegate.isMonitorOpen());
    repeat(main.logView, Qt::Key_O, Qt::AltModifier, "o");
    QVERIFY(main.delegate.isMonitorOpen());
    QCOMPARE(main.count("DTR=true"), 1);
}

void RepeatedKeysTest::repeatsAloneToggleNothing() {
    KeysFixture main;
    QVERIFY(main.focus(main.monitorButton));
    repeatReturn(main.monitorButton);
    repeat(main.monitorButton, Qt::Key_O, Qt::AltModifier, "o");
    QVERIFY(!main.delegate.isMonitorOpen());
    QCOMPARE(main.count("DTR=true"), 0);
    QVERIFY(!main.window.isSheetUp());
}

void RepeatedKeysTest::repeatsStartNoWrite() {
    KeysFixture main;
    main.choosePort("/dev/none");
    for (QWidget* widget :
         std::initializer_list<QWidget*>{&main.path, main.ports.lineEdit(), main.speeds.lineEdit(),
                                         main.monitorSpeeds.lineEdit(), &main.writeButton}) {
        QVERIFY(main.focus(*widget));
        repeatReturn(*widget);
        QVERIFY2(!main.window.isSheetUp(), qPrintable(widget->accessibleDescription()));
    }
    QTest::keyClick(&main.path, Qt::Key_Return);
    QVERIFY(main.window.isSheetUp());
}

// Alt+W, held until the result of the write that it started has been closed.
void RepeatedKeysTest::repeatsOfWritesLetterStartNoWrite() {
    KeysFixture main;
    main.choosePort("/dev/none");
    QVERIFY(main.focus(main.path));
    const ResultWindowAnswer answer;
    repeat(main.path, Qt::Key_W, Qt::AltModifier, "w");
    QTest::qWait(300); // the button takes a moment to be seen pressed
    QCOMPARE(answer.messages.size(), 0);
    QVERIFY(!main.window.isSheetUp());
    QTest::keyClick(&main.path, Qt::Key_W, Qt::AltModifier);
    QTRY_COMPARE(answer.messages.size(), 1);
}

void RepeatedKeysTest::returnInTheMonitorsSpeedOpens() {
    KeysFixture main;
    QVERIFY(main.focus(*main.monitorSpeeds.lineEdit()));
    main.type(main.monitorSpeeds, "19200");
    QTest::keyClick(main.monitorSpeeds.lineEdit(), Qt::Key_Return);
    QVERIFY(main.delegate.isMonitorOpen());
    QVERIFY(!main.window.isSheetUp());
    QCOMPARE(main.delegate.contextInfo().PortName, ""); // Write has not even looked
    QCOMPARE(main.count("DTR=true"), 1);
    main.monitorButton.click();
    QVERIFY(!main.delegate.isMonitorOpen());
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::RepeatedKeysTest)
#include "RepeatedKeysTest.moc"
