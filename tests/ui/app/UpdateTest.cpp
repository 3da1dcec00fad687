// The port list that Update makes.
#include "serial/platform/PortInspection.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/PortCommands.h"
#include "tests/ui/app/ResultWindowAnswer.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
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
    void listsHostileNamesAndWritesToNone();
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

// As the system's own command lists them: one name that has a line end in it is two ports, neither
// of which there is, and the other ones are files.
void UpdateTest::listsHostileNamesAndWritesToNone() {
    MainWindowFixture main;
    const QTemporaryDir folder;
    for (const char* name : {"cu.u'; reboot; '", "cu.u\nline", "cu.u \t-l", "cu.u\033[2J"}) {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("kept");
    }
    portCommands.reset();
    QByteArray command(platform::portListCommands().front());
    QCOMPARE(command, QByteArray("/bin/ls /dev/cu.u*"));
    command.replace("/dev/", QFile::encodeName(folder.path()) + '/');
    portCommands = {command.constData()};
    main.delegate.pushUpdating(nullptr);
    QStringList listed = main.items(main.ports);
    listed.sort(); // the listing is in the order of the person's language
    QStringList expected{"line"};
    for (const char* name : {"cu.u", "cu.u \t-l", "cu.u'; reboot; '", "cu.u\033[2J"}) {
        expected.append(folder.filePath(name));
    }
    expected.sort();
    QCOMPARE(listed, expected);
    const ResultWindowAnswer answer;
    for (int item = 0; item < main.ports.count(); ++item) {
        main.ports.setCurrentIndex(item);
        main.writeButton.click();
        QTRY_VERIFY(answer.messages.size() == item + 1 && !main.window.isSheetUp());
        QVERIFY2(answer.messages[item].contains("ERROR:0x00001002\n"),
                 qPrintable(answer.messages[item]));
    }
    const QFileInfoList files = QDir(folder.path()).entryInfoList(QDir::Files);
    QCOMPARE(files.size(), 4);
    for (const QFileInfo& file : files) {
        QFile content(file.filePath());
        QVERIFY(content.open(QIODevice::ReadOnly));
        QCOMPARE(content.readAll(), QByteArray("kept"));
    }
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
