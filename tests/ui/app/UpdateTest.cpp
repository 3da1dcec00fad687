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
    void takesNamesAsTheyAre();
    void refusesANameThatIsTooLong();
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

// No shell sees them again, and bytes that are no text become what stands for that.
void UpdateTest::takesNamesAsTheyAre() {
    MainWindowFixture main;
    portCommands = {
        "printf '%s\\n' '/dev/cu.u $(reboot) `reboot` ; & | > < *' '/dev/cu.u\"q\\' ''; "
        "printf '/dev/cu.u\\377\\n'"};
    main.delegate.pushUpdating(nullptr);
    QCOMPARE(main.items(main.ports),
             (QStringList{"/dev/cu.u $(reboot) `reboot` ; & | > < *", "/dev/cu.u\"q\\", "",
                          QString("/dev/cu.u") + QChar::ReplacementCharacter}));
}

void UpdateTest::refusesANameThatIsTooLong() {
    MainWindowFixture main;
    portCommands = {"printf '/dev/cu.u%01000d\\n' 0"};
    main.delegate.pushUpdating(nullptr);
    QCOMPARE(main.ports.currentText(), "/dev/cu.u" + QString(1000, '0'));
    main.path.setText("/tmp/" + QString(1000, 'f') + ".bin");
    main.writeButton.click();
    QVERIFY(!main.window.isSheetUp());
    QVERIFY(!main.log().isEmpty());
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::UpdateTest)
#include "UpdateTest.moc"
