#include "app/StatusLine.h"

#include "tests/sequence/DiagnosticLines.h"
#include "tests/support/FailingThread.h"
#include "tests/support/ImageFile.h"
#include "tests/ui/app/StatusFixture.h"

#include <QElapsedTimer>
#include <QTest>

namespace flashwriter::testing {

namespace {

const QString NO_IMAGE = "No image is chosen: press Select, or drop a .bin or .mot file onto its "
                         "field.";

} // namespace

class StatusLineTest : public QObject {
    Q_OBJECT

private slots:
    void saysNothingBeforeItIsTold();
    void saysWhatStandsInTheWay();
    void looksOnceForManyChanges();
    void holdsATextUntilItIsReleased();
    void aTextThatIsHeldOutlastsALookUnderWay();
    void mayGoWhileALookIsUnderWay();
    void goesOnWithoutAThread();
};

void StatusLineTest::saysNothingBeforeItIsTold() {
    const StatusFixture form;
    QTest::qWait(200);
    QCOMPARE(form.looks, 0);
    QVERIFY(form.label.text().isEmpty());
}

void StatusLineTest::saysWhatStandsInTheWay() {
    StatusFixture form;
    form.line->refresh();
    QTRY_COMPARE(form.label.text(), NO_SPEED);
    QCOMPARE(form.label.accessibleDescription(), NO_SPEED);
    form.entries.isSpeedChosen = true;
    form.line->refresh();
    QTRY_COMPARE(form.label.text(), NO_IMAGE);
    const ImageFile image("image.bin", std::string("image"));
    form.entries.file = image.path();
    form.line->refresh();
    QTRY_COMPARE(form.label.text(), "Ready to write.");
}

void StatusLineTest::looksOnceForManyChanges() {
    StatusFixture form;
    QElapsedTimer sinceLastChange;
    for (int i = 0; i < 20; ++i) {
        form.line->refresh();
        sinceLastChange.start();
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(form.looks, 1);
    QVERIFY(sinceLastChange.elapsed() >= 100);
    QTRY_COMPARE(form.label.text(), NO_SPEED);
    QTest::qWait(200);
    QCOMPARE(form.looks, 1);
}

void StatusLineTest::holdsATextUntilItIsReleased() {
    StatusFixture form;
    form.line->refresh();
    form.line->hold("Busy.");
    QCOMPARE(form.label.text(), "Busy.");
    form.line->refresh();
    QTest::qWait(300);
    QCOMPARE(form.looks, 0);
    QCOMPARE(form.label.text(), "Busy.");
    form.line->hold("Still busy.");
    QCOMPARE(form.label.text(), "Still busy.");
    form.line->release();
    QCOMPARE(form.label.text(), ""); // until it has looked
    QTRY_COMPARE(form.label.text(), NO_SPEED);
}

void StatusLineTest::aTextThatIsHeldOutlastsALookUnderWay() {
    StatusFixture form;
    form.line->refresh();
    while (form.looks == 0) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    form.line->hold("Busy.");
    QTest::qWait(200);
    QCOMPARE(form.label.text(), "Busy.");
}

void StatusLineTest::mayGoWhileALookIsUnderWay() {
    for (int i = 0; i < 5; ++i) {
        StatusFixture form;
        form.line->refresh();
        while (form.looks == 0) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        const QString before = form.label.text(); // a quick answer may be there already
        form.line.reset();
        QTest::qWait(20);
        QCOMPARE(form.label.text(), before);
    }
}

void StatusLineTest::goesOnWithoutAThread() {
    const DiagnosticLines lines;
    StatusFixture form;
    failThreadCreation = true;
    form.line->refresh();
    const bool hasFailed =
        QTest::qWaitFor([&] { return DiagnosticLines::all().size() == 1; }, 5000);
    failThreadCreation = false;
    QVERIFY(hasFailed);
    QVERIFY(DiagnosticLines::all()[0].starts_with("lookup: "));
    QVERIFY(form.label.text().isEmpty());
    QTRY_COMPARE(form.label.text(), NO_SPEED); // it looks again by itself
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::StatusLineTest)
#include "StatusLineTest.moc"
