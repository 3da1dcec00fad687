// The main thread runs out of memory, at each allocation of the program's own by turns: whatever
// was begun ends, and nothing is said that is not so.
#include "board/VirtualBoard.h"
#include "sequence/context/DiagnosticLog.h"
#include "tests/support/FailingNew.h"
#include "tests/support/ImageFile.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/PortCommands.h"
#include "tests/ui/app/ResultWindowAnswer.h"

#include <QTest>

#include <new>

namespace flashwriter::testing {

namespace {

struct ScarceFixture : MainWindowFixture {
    ScarceFixture() {
        board::BoardOptions options;
        options.pace = false;
        options.target.flash.codeKib = 16;
        board.start(options);
        choosePort(board.portPath());
        window.show();
        setDiagnosticSink([](const char*) {}); // the test's own would take memory
    }
    // Nothing that a write or the monitor does to the window is left.
    bool isIdle() const {
        return !window.isSheetUp() && window.isMiniaturizeEnabled() && areControls(true) &&
               !delegate.isMonitorOpen() && monitorButton.text() == "Open" &&
               QApplication::activeModalWidget() == nullptr;
    }
    bool isIdleSoon() {
        return QTest::qWaitFor([this] { return isIdle(); }, 20000) &&
               QTest::qWaitFor([this] { return status.text() != "Writing…"; }, 5000);
    }
    board::VirtualBoard board;
};

} // namespace

class ScarceMemoryTest : public QObject {
    Q_OBJECT

private slots:
    void endsAWriteThatBegins();
    void endsAWriteThatGoesOn();
    void opensOrClosesTheMonitor();
    void listsPorts();
    void showsNoResultOfAnEarlierWrite();
    void goesOnWithoutMemoryForDiagnostics();
};

// Only until the write's thread has been started.
void ScarceMemoryTest::endsAWriteThatBegins() {
    const std::vector<std::uint8_t> image = patternImage(100);
    const ImageFile file("image.bin", image);
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        ScarceFixture main; // whose windows are loaded by this write
        main.path.setText(QString::fromStdString(file.path()));
        const auto expected = flashAfter(image, main.board.codeFlash());
        const ResultWindowAnswer answer;
        {
            const FailingNew failing(n);
            main.writeButton.click();
            hasFailed = FailingNew::hasFailed();
        }
        QVERIFY2(main.isIdleSoon(), qPrintable(main.status.text()));
        QTRY_COMPARE_WITH_TIMEOUT(answer.messages.size(), 1, 20000);
        if (answer.messages[0].contains("succeeded")) {
            QVERIFY(main.board.codeFlash() == expected);
        } else {
            QVERIFY2(answer.messages[0].contains("ERROR:0x00002000\n"),
                     qPrintable(answer.messages[0]));
            QVERIFY2(answer.advice[0].contains("memory"), qPrintable(answer.advice[0]));
        }
        QVERIFY(hasFailed || answer.messages[0].contains("succeeded"));
        QVERIFY(n > 5 || hasFailed);
    }
}

// From the press to the result: progress and log come in between.
void ScarceMemoryTest::endsAWriteThatGoesOn() {
    const ImageFile file("image.bin", patternImage(100));
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        ScarceFixture main;
        main.path.setText(QString::fromStdString(file.path()));
        const ResultWindowAnswer answer;
        const FailingNew failing(n);
        main.writeButton.click();
        const bool isIdle = main.isIdleSoon();
        hasFailed = FailingNew::hasFailed();
        QVERIFY2(isIdle, qPrintable(main.status.text()));
        QVERIFY(answer.messages.size() <= 1);
        QVERIFY(hasFailed || answer.messages.value(0).contains("succeeded"));
        QVERIFY(n > 10 || hasFailed);
    }
}

void ScarceMemoryTest::opensOrClosesTheMonitor() {
    ScarceFixture main;
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        const ResultWindowAnswer answer;
        {
            const FailingNew failing(n);
            main.monitorButton.click();
            hasFailed = FailingNew::hasFailed();
        }
        if (main.delegate.isMonitorOpen()) {
            const FailingNew failing(n);
            main.monitorButton.click();
            hasFailed = hasFailed || FailingNew::hasFailed();
        }
        QVERIFY2(main.isIdleSoon(), qPrintable(QString::number(n)));
        QVERIFY(n > 5 || hasFailed);
    }
}

void ScarceMemoryTest::listsPorts() {
    ScarceFixture main;
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        const FailingNew failing(n);
        main.updateButton.click();
        hasFailed = FailingNew::hasFailed();
        QCOMPARE(main.ports.count(), 1);
    }
}

// Should it come to that the result of this one cannot be told.
void ScarceMemoryTest::showsNoResultOfAnEarlierWrite() {
    ScarceFixture main;
    const ImageFile file("image.bin", patternImage(100));
    main.path.setText(QString::fromStdString(file.path()));
    const ResultWindowAnswer answer;
    main.writeButton.click();
    QVERIFY(main.isIdleSoon());
    QVERIFY(answer.messages.value(0).contains("succeeded"));
    const auto* message = main.window.findChild<QLabel*>("resultMessage");
    main.writeButton.click();
    const QString atOnce = message->text();
    QVERIFY(main.isIdleSoon());
    QCOMPARE(atOnce, "");
}

// As the toolkit's own logging has it, which is where the program's lines go.
void ScarceMemoryTest::goesOnWithoutMemoryForDiagnostics() {
    ScarceFixture main;
    setDiagnosticSink([](const char*) { throw std::bad_alloc(); });
    main.updateButton.click();
    QCOMPARE(main.ports.count(), 1);
    main.choosePort(main.board.portPath());
    main.monitorButton.click();
    QVERIFY(main.delegate.isMonitorOpen());
    const std::vector<std::uint8_t> image = patternImage(100);
    const ImageFile file("image.bin", image);
    main.path.setText(QString::fromStdString(file.path()));
    const auto expected = flashAfter(image, main.board.codeFlash());
    main.monitorButton.click();
    const ResultWindowAnswer answer;
    main.writeButton.click();
    QVERIFY(main.isIdleSoon());
    QVERIFY2(answer.messages.value(0).contains("succeeded"), qPrintable(answer.messages.value(0)));
    QVERIFY(main.board.codeFlash() == expected);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::ScarceMemoryTest)
#include "ScarceMemoryTest.moc"
