#include "ui/NSFileDropTextField.h"
#include "tests/ui/windows/Drags.h"

#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>

namespace flashwriter::testing {

namespace {

const char* const BEFORE = "/what/was/there.bin";

} // namespace

// What may be dropped on the field. The files stand in a folder of their own, in which this runs.
class NSFileDropTextFieldTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void takesFilesNamed_data();
    void takesFilesNamed();
    void refusesFilesNamed_data();
    void refusesFilesNamed();
    void refusesMoreThanOne();
    void refusesNone();
    void takesAddressesOfThisMachine_data();
    void takesAddressesOfThisMachine();
    void refusesOtherAddresses_data();
    void refusesOtherAddresses();
    void listsPathsInTheirOrder();
    void looksAtNothingBeforeTheDrop();
    void looksAtTheFileWhenItIsDropped();

private:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    void create(const QString& name) const {
        QVERIFY(QFile(path(name)).open(QIODevice::WriteOnly));
    }
    static void isTaken(const QMimeData& dragging, const QString& text);
    static void isRefused(const QMimeData& dragging);

    QTemporaryDir m_folder;
};

void NSFileDropTextFieldTest::initTestCase() {
    QVERIFY(QDir(m_folder.path()).mkdir("folder.bin"));
    for (const char* name : {"image.bin", "second.bin", "image.hex"}) {
        create(name);
    }
    QVERIFY(QFile::link("image.bin", path("link.bin")));
    QVERIFY(QFile::link("folder.bin", path("folderlink.bin")));
    QVERIFY(QFile::link("missing.bin", path("broken.bin")));
    QVERIFY(QDir::setCurrent(m_folder.path()));
}

void NSFileDropTextFieldTest::cleanupTestCase() {
    QVERIFY(QDir::setCurrent(QDir::rootPath()));
}

void NSFileDropTextFieldTest::isTaken(const QMimeData& dragging, const QString& text) {
    NSFileDropTextField field;
    field.setText(BEFORE);
    QVERIFY(enter(field, dragging).isAccepted);
    QVERIFY(moveOn(field, dragging).isAccepted);
    const DragAnswer answer = drop(field, dragging);
    QVERIFY(answer.isAccepted);
    QCOMPARE(answer.action, Qt::CopyAction); // who moves a file would remove it at its old place
    QCOMPARE(field.text(), text);
    QVERIFY(field.isEnabled());
}

void NSFileDropTextFieldTest::isRefused(const QMimeData& dragging) {
    NSFileDropTextField field;
    field.setText(BEFORE);
    QVERIFY(enter(field, dragging).isAccepted); // whatever it is
    QVERIFY(!field.isEnabled());
    QVERIFY(moveOn(field, dragging).isAccepted);
    QVERIFY(!drop(field, dragging).isAccepted);
    QCOMPARE(field.text(), QString(BEFORE));
    QVERIFY(field.isEnabled());
}

void NSFileDropTextFieldTest::takesFilesNamed_data() {
    QTest::addColumn<QString>("name");
    for (const char* name : {"image.bin", "IMAGE.BIN", "firmware.MOT", "image.Mot", "two.hex.bin",
                             "..bin", " .mot", "line\nbreak.bin", "carriage\rreturn.bin",
                             "quote\"'`.bin", "per%41cent%.bin", "a b+c.bin", "hash#mark?.bin",
                             "Grüße-日本-\xF0\x9F\x98\x80.bin", "back\\slash.bin", "tab\t.bin"}) {
        QTest::newRow(name) << QString::fromUtf8(name);
    }
}

void NSFileDropTextFieldTest::takesFilesNamed() {
    QFETCH(QString, name);
    create(name);
    isTaken(*dragOfFiles({path(name)}), path(name));
}

void NSFileDropTextFieldTest::refusesFilesNamed_data() {
    QTest::addColumn<QString>("name");
    for (const char* name : {"image.hex", "image", ".bin", "image.bin.", "image.bin ", "image.binx",
                             "image.bi", "imagebin", "image.b\xC4\xB1n"}) {
        QTest::newRow(name) << QString::fromUtf8(name);
    }
}

void NSFileDropTextFieldTest::refusesFilesNamed() {
    QFETCH(QString, name);
    create(name);
    isRefused(*dragOfFiles({path(name)}));
}

void NSFileDropTextFieldTest::refusesMoreThanOne() {
    isRefused(*dragOfFiles({path("image.bin"), path("second.bin")}));
    isRefused(*dragOfFiles({path("image.bin"), path("image.bin")}));
    isRefused(*dragOfFiles({path("image.bin"), path("image.hex"), path("missing")}));
}

void NSFileDropTextFieldTest::refusesNone() {
    isRefused(*dragOf({}));
    isRefused(*dragOf({QUrl()}));
    isRefused(QMimeData());
    QMimeData text;
    text.setText(path("image.bin"));
    isRefused(text);
    QMimeData list;
    list.setData("text/uri-list", "# nothing but a comment\r\n");
    isRefused(list);
    QVERIFY(!NSFileDropTextField::acceptableObject(*dragOf({})));
}

void NSFileDropTextFieldTest::takesAddressesOfThisMachine_data() {
    QTest::addColumn<QString>("start");
    QTest::newRow("no host") << "file://";
    QTest::newRow("no slashes") << "file:";
    QTest::newRow("localhost") << "file://localhost";
    QTest::newRow("LOCALHOST") << "FILE://LOCALHOST";
    QTest::newRow("host") << "file://" + QSysInfo::machineHostName();
}

void NSFileDropTextFieldTest::takesAddressesOfThisMachine() {
    QFETCH(QString, start);
    isTaken(*dragOf({QUrl(start + path("image.bin"))}), path("image.bin"));
    isTaken(*dragOf({QUrl(start + path("link.bin"))}), path("link.bin"));
}

void NSFileDropTextFieldTest::refusesOtherAddresses_data() {
    QTest::addColumn<QString>("address");
    QTest::newRow("folder") << "file://" + path("folder.bin");
    QTest::newRow("folder with a slash") << "file://" + path("folder.bin/");
    QTest::newRow("link to a folder") << "file://" + path("folderlink.bin");
    QTest::newRow("missing") << "file://" + path("missing.bin");
    QTest::newRow("link to nothing") << "file://" + path("broken.bin");
    QTest::newRow("below a file") << "file://" + path("image.bin/image.bin");
    QTest::newRow("web") << "http://localhost" + path("image.bin");
    QTest::newRow("no file") << "trash:" + path("image.bin");
    QTest::newRow("other machine") << "file://elsewhere.example" + path("image.bin");
    QTest::newRow("NUL") << "file://" + path("image.bin%00.bin");
    QTest::newRow("NUL at the end") << "file://" + path("image.bin%00");
    QTest::newRow("other encoding") << "file://" + path("image%FF.bin");
    QTest::newRow("no path") << "file://";
    QTest::newRow("from the current folder") << "file:image.bin";
    QTest::newRow("no scheme") << "image.bin";
    QTest::newRow("of the program's own") << "qrc:/image.bin";
}

void NSFileDropTextFieldTest::refusesOtherAddresses() {
    QFETCH(QString, address);
    isRefused(*dragOf({QUrl(address)}));
}

void NSFileDropTextFieldTest::listsPathsInTheirOrder() {
    const QStringList paths{"/b.bin", "/a b.bin", "/b.bin", "/%41.bin"};
    QCOMPARE(NSFileDropTextField::fileListInDraggingInfo(*dragOfFiles(paths)), paths);
    QCOMPARE(NSFileDropTextField::fileListInDraggingInfo(QMimeData()), QStringList());
}

void NSFileDropTextFieldTest::looksAtNothingBeforeTheDrop() {
    NSFileDropTextField field;
    const QMimeData nothing;
    QCOMPARE(field.draggingEntered(nothing), DragOperation::Generic);
    QCOMPARE(NSFileDropTextField::draggingUpdated(nothing), DragOperation::Generic);
    QVERIFY(!field.performDragOperation(nothing));
    QCOMPARE(static_cast<int>(DragOperation::Generic), 4);
    QCOMPARE(static_cast<int>(DragOperation::None), 0);
    QVERIFY(NSFileDropTextField::acceptableObject(*dragOfFiles({path("image.hex")})));
}

void NSFileDropTextFieldTest::looksAtTheFileWhenItIsDropped() {
    create("late.bin");
    NSFileDropTextField field;
    const auto dragging = dragOfFiles({path("late.bin")});
    enter(field, *dragging);
    QVERIFY(QFile::remove(path("late.bin")));
    QVERIFY(!drop(field, *dragging).isAccepted);
    QCOMPARE(field.text(), QString());
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::NSFileDropTextFieldTest)
#include "NSFileDropTextFieldTest.moc"
