// The look for ports at the start runs out of memory on its thread, at each allocation of the
// program's own by turns.
#include "sequence/context/DiagnosticLog.h"
#include "tests/support/FailingNew.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/PortCommands.h"

#include <QTest>

#include <future>

namespace flashwriter::testing {

class ScarceScanTest : public QObject {
    Q_OBJECT

private slots:
    void listsPortsLater();
};

// What could not be found at the start is found by the next look.
void ScarceScanTest::listsPortsLater() {
    const QStringList found{"/dev/cu.usb1", "/dev/cu.usb2"};
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        MainWindowFixture main;
        setDiagnosticSink([](const char*) {}); // the test's own would take memory
        portCommands = {"exit 2", "echo /dev/cu.usb1; echo /dev/cu.usb2"};
        const FailingNewElsewhere failing(n);
        main.delegate.setLaunchScan(std::async(std::launch::async, scanPorts));
        main.delegate.pushUpdating(nullptr);
        hasFailed = FailingNewElsewhere::hasFailed();
        QCOMPARE(main.items(main.ports), hasFailed ? QStringList{""} : found);
        QVERIFY(main.areControls(true));
        main.updateButton.click();
        QCOMPARE(main.items(main.ports), found);
        QCOMPARE(main.ports.currentText(), "/dev/cu.usb2");
        QVERIFY(n > 1 || hasFailed);
    }
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::ScarceScanTest)
#include "ScarceScanTest.moc"
