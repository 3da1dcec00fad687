// What Write makes of the form before it starts anything.
#include "sequence/context/ResultText.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/ResultWindowAnswer.h"

#include <QTest>

namespace flashwriter::testing {

namespace {

const QString TOO_LONG =
    QString::fromStdString(getResultText(static_cast<std::int64_t>(RESULT_PARAMETER_ERROR)));

QString nameOf(int bytes) {
    return "/" + QString(bytes - 1, 'p');
}

// Whether Write has done nothing that shows.
bool isRefused(const MainWindowFixture& main) {
    return !main.window.isSheetUp() && main.window.isMiniaturizeEnabled();
}

// Lets a write that has started end, which it does at once: there is no such port.
bool endWrite(const MainWindowFixture& main) {
    const ResultWindowAnswer answer;
    return QTest::qWaitFor([&] {
        return !main.window.isSheetUp() && main.log().endsWith("## Write Failed") &&
               main.count("0x00001002") == 1;
    });
}

} // namespace

class WriteFormTest : public QObject {
    Q_OBJECT

private slots:
    void refusesAMissingPort();
    void acceptsTheEmptyItem();
    void acceptsATypedPortWithoutAList();
    void mapsTheSpeed_data();
    void mapsTheSpeed();
    void refusesATypedSpeed();
    void zeroesTheContext();
    void takesNamesThatJustFit();
    void refusesNamesThatAreTooLong_data();
    void refusesNamesThatAreTooLong();
    void countsBytesOfUtf8();
    void startsWithSheetAndClearedLog();
};

void WriteFormTest::refusesAMissingPort() {
    MainWindowFixture main;
    main.ports.clear();
    main.path.setText("/tmp/image.bin");
    main.speeds.setCurrentIndex(1);
    main.delegate.addLogDispTextView("before");
    main.writeButton.click();
    QVERIFY(isRefused(main));
    QCOMPARE(main.log(), "before");
    QCOMPARE(main.delegate.contextInfo().PortName, "");
    QCOMPARE(main.delegate.contextInfo().BaudRate, 0); // it was not looked at
    QCOMPARE(main.delegate.contextInfo().TargetFileInfo.FilePath, "/tmp/image.bin");
    QCOMPARE(DiagnosticLines::all(), Lines{"task_error:"});
}

void WriteFormTest::acceptsTheEmptyItem() {
    MainWindowFixture main;
    QCOMPARE(main.items(main.ports), QStringList{""});
    main.delegate.pushWrite(nullptr);
    QVERIFY(main.window.isSheetUp());
    QCOMPARE(main.delegate.contextInfo().PortName, "");
    QVERIFY(endWrite(main));
}

void WriteFormTest::acceptsATypedPortWithoutAList() {
    MainWindowFixture main;
    main.ports.clear();
    main.type(main.ports, "/dev/none");
    main.delegate.pushWrite(nullptr);
    QVERIFY(main.window.isSheetUp());
    QCOMPARE(main.delegate.contextInfo().PortName, "/dev/none");
    QVERIFY(endWrite(main));
}

void WriteFormTest::mapsTheSpeed_data() {
    QTest::addColumn<int>("item");
    QTest::addColumn<int>("index");
    QTest::newRow("115,200 bps") << 0 << 0;
    QTest::newRow("500,000 bps") << 1 << 2;
}

void WriteFormTest::mapsTheSpeed() {
    QFETCH(const int, item);
    QFETCH(const int, index);
    MainWindowFixture main;
    main.speeds.setCurrentIndex(item);
    main.delegate.pushWrite(nullptr);
    QCOMPARE(static_cast<int>(main.delegate.contextInfo().BaudRate), index);
    QVERIFY(endWrite(main));
}

// Even one that is in the list, for it has not been chosen there.
void WriteFormTest::refusesATypedSpeed() {
    MainWindowFixture main;
    main.choosePort("/dev/none");
    main.path.setText("/tmp/image.bin");
    for (const char* text : {"115200", "115,200 bps", "500,000 bps", "x", ""}) {
        main.speeds.setCurrentIndex(0);
        main.type(main.speeds, text);
        main.delegate.pushWrite(nullptr);
        QVERIFY2(isRefused(main), text);
        QCOMPARE(main.delegate.contextInfo().PortName, "/dev/none");
        QCOMPARE(main.delegate.contextInfo().TargetFileInfo.FilePath, "/tmp/image.bin");
    }
    QVERIFY(main.log().isEmpty());
    QCOMPARE(DiagnosticLines::all(), Lines{"task_error:"});
    main.speeds.setCurrentIndex(-1);
    main.delegate.pushWrite(nullptr);
    QVERIFY(isRefused(main));
}

// What an earlier, longer name has left is gone.
void WriteFormTest::zeroesTheContext() {
    MainWindowFixture main;
    main.speeds.setCurrentIndex(-1);
    main.choosePort(nameOf(200).toStdString());
    main.path.setText(nameOf(200));
    main.delegate.pushWrite(nullptr);
    main.choosePort("/dev/none");
    main.path.setText("a");
    main.delegate.pushWrite(nullptr);
    _CONTEXTINFO expected{};
    const _CONTEXTINFO& context = main.delegate.contextInfo();
    QVERIFY(context.pResultInfo != nullptr);
    QCOMPARE(context.pResultInfo->Result, RESULT_OK);
    expected.pResultInfo = context.pResultInfo;
    storePath(expected.PortName, "/dev/none");
    storePath(expected.TargetFileInfo.FilePath, "a");
    QVERIFY(std::memcmp(expected.PortName, context.PortName, sizeof context.PortName) == 0);
    QVERIFY(std::memcmp(expected.TargetFileInfo.FilePath, context.TargetFileInfo.FilePath,
                        sizeof context.TargetFileInfo.FilePath) == 0);
    QCOMPARE(context.ComRetryMax, std::uint64_t{0});
}

void WriteFormTest::takesNamesThatJustFit() {
    MainWindowFixture main;
    main.choosePort(nameOf(259).toStdString());
    main.path.setText(nameOf(259));
    main.delegate.pushWrite(nullptr);
    QVERIFY(main.window.isSheetUp());
    QCOMPARE(QString(main.delegate.contextInfo().PortName), nameOf(259));
    QCOMPARE(QString(main.delegate.contextInfo().TargetFileInfo.FilePath), nameOf(259));
    QVERIFY(endWrite(main));
}

void WriteFormTest::refusesNamesThatAreTooLong_data() {
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("file");
    QTest::newRow("port") << nameOf(260) << "/tmp/image.bin";
    QTest::newRow("file") << "/dev/none" << nameOf(260);
    QTest::newRow("both") << nameOf(300) << nameOf(5000);
}

void WriteFormTest::refusesNamesThatAreTooLong() {
    QFETCH(const QString, port);
    QFETCH(const QString, file);
    MainWindowFixture main;
    main.choosePort(port.toStdString());
    main.path.setText(file);
    main.delegate.pushWrite(nullptr);
    QVERIFY(isRefused(main));
    QCOMPARE(main.log(), TOO_LONG);
    QCOMPARE(QString(main.delegate.contextInfo().PortName), port.size() < 260 ? port : "");
    QCOMPARE(QString(main.delegate.contextInfo().TargetFileInfo.FilePath),
             file.size() < 260 ? file : "");
}

void WriteFormTest::countsBytesOfUtf8() {
    MainWindowFixture main;
    main.path.setText("/" + QString(130, QChar(0xE9))); // 261 bytes
    main.delegate.pushWrite(nullptr);
    QVERIFY(isRefused(main));
    QCOMPARE(main.log(), TOO_LONG);
    main.path.setText("/" + QString(129, QChar(0xE9))); // 259
    main.delegate.pushWrite(nullptr);
    QVERIFY(main.window.isSheetUp());
    QVERIFY(endWrite(main));
}

void WriteFormTest::startsWithSheetAndClearedLog() {
    MainWindowFixture main;
    main.window.show();
    main.delegate.addLogDispTextView("of the write before\n");
    main.delegate.pushWrite(nullptr);
    QVERIFY(main.window.isSheetUp());
    QVERIFY(!main.window.isMiniaturizeEnabled());
    QVERIFY(main.log().isEmpty());
    QVERIFY(endWrite(main));
    QVERIFY(main.window.isMiniaturizeEnabled());
    QCOMPARE(main.log(), "## Write Failed");
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::WriteFormTest)
#include "WriteFormTest.moc"
