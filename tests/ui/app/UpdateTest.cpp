// The port list that Update makes.
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/PortCommands.h"

#include <QTest>

#include <utility>

namespace flashwriter::testing {

class UpdateTest : public QObject {
    Q_OBJECT

private slots:
    void listsAnEmptyPortWhenNoneIsFound();
    void listsAllPortsAndSelectsTheLast();
    void updateReplacesListAndText_data();
    void updateReplacesListAndText();
    void updateButtonUpdates();
};

void UpdateTest::listsAnEmptyPortWhenNoneIsFound() {
    MainWindowFixture main;
    portCommands = {"echo no such device; exit 2"};
    main.delegate.pushUpdating(nullptr);
    QCOMPARE(main.items(main.ports), QStringList{""});
    QCOMPARE(main.ports.currentIndex(), 0);
    QCOMPARE(main.ports.currentText(), "");
    QCOMPARE(DiagnosticLines::all(), (Lines{"task_error:", "task_error:no such device\n"}));
    QVERIFY(main.log().isEmpty());
}

void UpdateTest::listsAllPortsAndSelectsTheLast() {
    MainWindowFixture main;
    portCommands = {"echo /dev/cu.usb9; echo /dev/cu.usb1; echo /dev/cu.usb5"};
    main.delegate.pushUpdating(nullptr);
    QCOMPARE(main.items(main.ports), (QStringList{"/dev/cu.usb9", "/dev/cu.usb1", "/dev/cu.usb5"}));
    QCOMPARE(main.ports.currentIndex(), 2);
    QCOMPARE(main.ports.currentText(), "/dev/cu.usb5");
    QCOMPARE(DiagnosticLines::all(), Lines{"task_error:"}); // that of the start
}

void UpdateTest::updateReplacesListAndText_data() {
    QTest::addColumn<QStringList>("before");
    QTest::newRow("a list") << QStringList{"/dev/a", "/dev/b"};
    QTest::newRow("an empty item") << QStringList{""};
    QTest::newRow("no list") << QStringList{};
}

void UpdateTest::updateReplacesListAndText() {
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

void UpdateTest::updateButtonUpdates() {
    const MainWindowFixture main;
    portCommands = {"echo /dev/c"};
    main.updateButton.click();
    QCOMPARE(main.ports.currentText(), "/dev/c");
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::UpdateTest)
#include "UpdateTest.moc"
