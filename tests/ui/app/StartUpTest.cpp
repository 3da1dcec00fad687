// What the program shows and holds when it starts, and what Update and Quit do.
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/PortCommands.h"

#include <QMimeData>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <utility>

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
    void listsAllPortsAndSelectsTheLast();
    void updateReplacesListAndText_data();
    void updateReplacesListAndText();
    void updateChangesNothingElse();
    void updateButtonUpdates();
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
    MainWindowFixture main;
    portCommands = {"echo no such device; exit 2"};
    main.delegate.pushUpdating(nullptr);
    QCOMPARE(main.items(main.ports), QStringList{""});
    QCOMPARE(main.ports.currentIndex(), 0);
    QCOMPARE(main.ports.currentText(), "");
    QCOMPARE(DiagnosticLines::all(), (Lines{"task_error:", "task_error:no such device\n"}));
    QVERIFY(main.log().isEmpty());
}

void StartUpTest::listsAllPortsAndSelectsTheLast() {
    MainWindowFixture main;
    portCommands = {"echo /dev/cu.usb9; echo /dev/cu.usb1; echo /dev/cu.usb5"};
    main.delegate.pushUpdating(nullptr);
    QCOMPARE(main.items(main.ports), (QStringList{"/dev/cu.usb9", "/dev/cu.usb1", "/dev/cu.usb5"}));
    QCOMPARE(main.ports.currentIndex(), 2);
    QCOMPARE(main.ports.currentText(), "/dev/cu.usb5");
    QCOMPARE(DiagnosticLines::all(), Lines{"task_error:"}); // that of the start
}

void StartUpTest::updateReplacesListAndText_data() {
    QTest::addColumn<QStringList>("before");
    QTest::newRow("a list") << QStringList{"/dev/a", "/dev/b"};
    QTest::newRow("an empty item") << QStringList{""};
    QTest::newRow("no list") << QStringList{};
}

void StartUpTest::updateReplacesListAndText() {
    QFETCH(const QStringList, before);
    MainWindowFixture main;
    for (const auto& [command, text] : {std::pair{"echo /dev/c", "/dev/c"}, {"exit 2", ""}}) {
        main.ports.clear();
        main.ports.addItems(before);
        main.ports.setEditText("/dev/typed");
        portCommands = {command};
        main.delegate.pushUpdating(nullptr);
        QCOMPARE(main.items(main.ports), QStringList{text});
        QCOMPARE(main.ports.currentIndex(), 0);
        QCOMPARE(main.ports.currentText(), text);
    }
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

void StartUpTest::updateButtonUpdates() {
    const MainWindowFixture main;
    portCommands = {"echo /dev/c"};
    main.updateButton.click();
    QCOMPARE(main.ports.currentText(), "/dev/c");
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
