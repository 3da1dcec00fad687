// What the program shows and holds when it starts, and what Quit does.
#include "serial/StandardStreams.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/PortCommands.h"

#include <QMimeData>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

#include <array>

namespace flashwriter::testing {

class StartUpTest : public QObject {
    Q_OBJECT

private slots:
    void offersTwoSpeedsAndSelectsTheFirst();
    void appendsTheSpeedsToWhatIsThere();
    void selectsTheSecondSpeedOfTheMonitor();
    void startsWithTheMonitorClosedAndNothingLogged();
    void tellsTheWindowWhichFieldTakesFiles();
    void listsAnEmptyPortWhenNoneIsFound();
    void updateChangesNothingElse();
    void startingLeavesStandardInputAlone();
    void closingWithoutAMonitorLeavesDescriptorsAlone();
    void ignoresItsWindowOnceItIsGone();
};

void StartUpTest::offersTwoSpeedsAndSelectsTheFirst() {
    const MainWindowFixture main;
    QCOMPARE(main.items(main.speeds), (QStringList{"115,200 bps", "500,000 bps"}));
    QCOMPARE(main.speeds.currentIndex(), 0);
    QCOMPARE(main.speeds.currentText(), "115,200 bps");
}

void StartUpTest::appendsTheSpeedsToWhatIsThere() {
    portCommands.emplace();
    const StandardInput standardInput;
    NSFileDropWindow window;
    AppDelegate delegate(window);
    auto* speeds = window.findChild<QComboBox*>("baudRateComboBox");
    speeds->addItem("9,600 bps");
    const DiagnosticLines lines;
    delegate.applicationDidFinishLaunching(nullptr);
    QCOMPARE(MainWindowFixture::items(*speeds),
             (QStringList{"9,600 bps", "115,200 bps", "500,000 bps"}));
    QCOMPARE(speeds->currentIndex(), 0);
}

void StartUpTest::selectsTheSecondSpeedOfTheMonitor() {
    const MainWindowFixture main;
    QCOMPARE(main.monitorSpeeds.currentIndex(), 1);
    QCOMPARE(main.monitorSpeeds.currentText(), "9600");
}

void StartUpTest::startsWithTheMonitorClosedAndNothingLogged() {
    const MainWindowFixture main;
    QVERIFY(!main.delegate.isMonitorOpen());
    QVERIFY(!main.delegate.isInvertDTR());
    QCOMPARE(main.monitorButton.text(), "Open");
    QVERIFY(main.areControls(true));
    QVERIFY(main.monitorButton.isEnabled());
    QVERIFY(main.log().isEmpty());
    QVERIFY(main.path.text().isEmpty());
}

// A drag over the window enables the field that it knows.
void StartUpTest::tellsTheWindowWhichFieldTakesFiles() {
    MainWindowFixture main;
    main.path.setEnabled(false);
    main.window.draggingEntered(QMimeData());
    QVERIFY(main.path.isEnabled());
}

void StartUpTest::listsAnEmptyPortWhenNoneIsFound() {
    const MainWindowFixture main;
    QCOMPARE(main.items(main.ports), QStringList{""});
    QCOMPARE(main.ports.currentIndex(), 0);
    QCOMPARE(main.ports.currentText(), "");
    QCOMPARE(DiagnosticLines::all(), Lines{"task_error:"});
}

void StartUpTest::updateChangesNothingElse() {
    MainWindowFixture main;
    main.speeds.setCurrentIndex(1);
    main.monitorSpeeds.setCurrentIndex(3);
    main.path.setText("/tmp/image.bin");
    main.delegate.addLogDispTextView("a line\n");
    main.delegate.pushUpdating(&main.updateButton);
    QCOMPARE(main.speeds.currentIndex(), 1);
    QCOMPARE(main.monitorSpeeds.currentIndex(), 3);
    QCOMPARE(main.path.text(), "/tmp/image.bin");
    QCOMPARE(main.log(), "a line\n");
}

// Another thread might be given its number in between.
void StartUpTest::startingLeavesStandardInputAlone() {
    secureStandardStreams(); // the pipe must not get its number
    std::array<int, 2> ends{};
    QCOMPARE(::pipe(ends.data()), 0);
    QCOMPARE(::dup2(ends[0], STDIN_FILENO), STDIN_FILENO);
    const MainWindowFixture main;
    struct stat status {};
    QVERIFY(::fstat(STDIN_FILENO, &status) == 0);
    struct stat expected {};
    QVERIFY(::fstat(ends[0], &expected) == 0);
    QCOMPARE(status.st_ino, expected.st_ino);
    ::close(ends[0]);
    ::close(ends[1]);
}

// A file that happens to get the number of standard input must not be closed with the monitor.
void StartUpTest::closingWithoutAMonitorLeavesDescriptorsAlone() {
    MainWindowFixture main;
    QVERIFY(::close(STDIN_FILENO) == 0);
    const int own = ::dup(STDERR_FILENO);
    QCOMPARE(own, STDIN_FILENO);
    main.delegate.MonitorPortClose();
    main.delegate.MonitorPortClose();
    QVERIFY(main.delegate.applicationShouldTerminateAfterLastWindowClosed(nullptr));
    struct stat status {};
    QVERIFY(::fstat(own, &status) == 0);
    struct stat expected {};
    QVERIFY(::fstat(STDERR_FILENO, &expected) == 0);
    QVERIFY(status.st_ino == expected.st_ino && status.st_dev == expected.st_dev);
}

// The window outlives its controller, and may lose the focus or its texts by then.
void StartUpTest::ignoresItsWindowOnceItIsGone() {
    portCommands.emplace();
    const StandardInput standardInput;
    NSFileDropWindow window;
    const DiagnosticLines lines;
    {
        AppDelegate delegate(window);
        delegate.applicationDidFinishLaunching(nullptr);
    }
    window.findChild<QLineEdit*>("filePathTextField")->setText("/tmp/image.bin");
    window.findChild<QPushButton*>("updateButton")->click();
    emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
    QVERIFY(window.findChild<QComboBox*>("serialPortComboBox")->count() > 0);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::StartUpTest)
#include "StartUpTest.moc"
