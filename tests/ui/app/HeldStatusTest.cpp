// The status line while something goes on: a write, or the open monitor.
#include "board/VirtualBoard.h"
#include "tests/support/ImageFile.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/ResultWindowAnswer.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTest>

namespace flashwriter::testing {

namespace {

const QString IS_OPEN = "The serial monitor is open. Close it to write.";
const QString WRITING = "Writing…";

struct HeldFixture : MainWindowFixture {
    HeldFixture() {
        board::BoardOptions options;
        options.pace = false;
        options.target.flash.codeKib = 16;
        board.start(options);
        choosePort(board.portPath());
    }
    board::VirtualBoard board;
};

// As when the person comes back from another program.
void lookAgain() {
    Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
}

} // namespace

class HeldStatusTest : public QObject {
    Q_OBJECT

private slots:
    void saysThatThePortOfTheMonitorHasGone();
    void saysThatTheMonitorIsOpenWhileThePortIsThere();
    void changesAtOnceWhenTheMonitorCloses();
    void saysThatAWriteGoesOn();
    void canBeSelected();
};

void HeldStatusTest::saysThatThePortOfTheMonitorHasGone() {
    HeldFixture main;
    main.delegate.pushMonitorOpen(nullptr);
    QVERIFY(main.delegate.isMonitorOpen());
    QCOMPARE(main.status.text(), IS_OPEN);
    main.board.stop();
    lookAgain();
    QTRY_VERIFY(main.status.text().contains("has gone"));
    QVERIFY(main.status.accessibleDescription().contains("has gone"));
    main.delegate.pushMonitorOpen(nullptr);
    QVERIFY(!main.delegate.isMonitorOpen());
}

void HeldStatusTest::saysThatTheMonitorIsOpenWhileThePortIsThere() {
    HeldFixture main;
    main.delegate.pushMonitorOpen(nullptr);
    QVERIFY(main.delegate.isMonitorOpen());
    lookAgain();
    QTest::qWait(400);
    QCOMPARE(main.status.text(), IS_OPEN);
}

void HeldStatusTest::changesAtOnceWhenTheMonitorCloses() {
    HeldFixture main;
    main.delegate.pushMonitorOpen(nullptr);
    QCOMPARE(main.status.text(), IS_OPEN);
    main.delegate.pushMonitorOpen(nullptr);
    QVERIFY(main.status.text() != IS_OPEN);
    QCOMPARE(main.status.accessibleDescription(), main.status.text());
    QTRY_VERIFY(main.status.text().startsWith("No image is chosen"));
}

// Also when something changes that it would look at otherwise.
void HeldStatusTest::saysThatAWriteGoesOn() {
    HeldFixture main;
    const ImageFile file("image.bin", patternImage(3000));
    main.path.setText(QString::fromStdString(file.path()));
    QElapsedTimer sinceChange;
    QString seen;
    const ResultWindowAnswer answer(
        [&](QDialog&) { seen = main.status.text(); },
        [&] { return main.log().endsWith("## Write Complete") && sinceChange.elapsed() > 500; });
    main.writeButton.click();
    QVERIFY(main.window.isSheetUp());
    const QString atOnce = main.status.text();
    main.path.setText("/tmp/none.bin");
    lookAgain();
    sinceChange.start();
    QTRY_VERIFY_WITH_TIMEOUT(!main.window.isSheetUp(), 20000);
    QCOMPARE(atOnce, WRITING);
    QCOMPARE(seen, WRITING);
    QTRY_VERIFY(!main.status.text().isEmpty() && main.status.text() != WRITING);
}

// By mouse and by keyboard, to be copied.
void HeldStatusTest::canBeSelected() {
    HeldFixture main;
    main.window.show();
    main.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&main.window));
    QTRY_VERIFY(main.status.text().startsWith("No image is chosen"));
    main.status.setFocus();
    QVERIFY(main.status.hasFocus());
    QTest::keyClick(&main.status, Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClick(&main.status, Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(main.status.selectedText(), "N");
    QTest::mouseDClick(&main.status, Qt::LeftButton, {}, QPoint(12, main.status.height() / 2));
    QVERIFY(main.status.text().contains(main.status.selectedText()));
    QVERIFY(main.status.selectedText().size() > 1);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::HeldStatusTest)
#include "HeldStatusTest.moc"
