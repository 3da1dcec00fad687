// Whole writes from the main window into a board.
#include "board/VirtualBoard.h"
#include "tests/support/FailingThread.h"
#include "tests/support/ImageFile.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/ResultWindowAnswer.h"

#include <QApplication>
#include <QProgressBar>
#include <QTest>
#include <QTextDocument>
#include <QThread>

#include <atomic>
#include <vector>

namespace flashwriter::testing {

namespace {

const QString SUCCESS_LOG = "## Programming Mode\n## Block Blank Check & Erace... OK\n"
                            "## Programming... OK\n## Write Complete";
const QString SUCCEEDED = "The writing processing succeeded. ";

board::BoardOptions fastBoard(const char* fault = nullptr) {
    board::BoardOptions options;
    options.pace = false;
    options.target.flash.codeKib = 16;
    if (fault != nullptr) {
        options.faults = {board::parseFault(fault)};
    }
    return options;
}

// Presses Write, OK in the result window once the log is complete, and waits for the end.
struct WriteFixture : MainWindowFixture {
    explicit WriteFixture(const board::BoardOptions& options = fastBoard()) {
        board.start(options);
        choosePort(board.portPath());
        window.show();
    }
    bool isLogComplete() const {
        return log().endsWith("## Write Complete") || log().endsWith("## Write Failed");
    }
    bool write(const std::function<void(QDialog&)>& look = [](QDialog&) {}) {
        const ResultWindowAnswer answer(look, [this] { return isLogComplete(); });
        writeButton.click();
        const bool hasEnded =
            QTest::qWaitFor([this] { return !window.isSheetUp(); }, 20000) && isLogComplete();
        messages = answer.messages;
        return hasEnded;
    }

    QStringList messages;
    board::VirtualBoard board;
};

// Whether everything that it has been told of happened on the main thread.
struct MainThreadWatch {
    void see() {
        isAlwaysMain = isAlwaysMain && QThread::currentThread() == qApp->thread();
        ++seen;
    }
    std::atomic<bool> isAlwaysMain{true};
    std::atomic<int> seen{0};
};

} // namespace

class WriteTest : public QObject {
    Q_OBJECT

private slots:
    void writesAFile_data();
    void writesAFile();
    void goesByTheExtension_data();
    void goesByTheExtension();
    void showsProgressOnTheSheet();
    void showsTheResultAboveTheSheet();
    void clearsTheLogOfTheWriteBefore();
    void touchesWidgetsOnTheMainThreadOnly();
    void saysWhyItFailed_data();
    void saysWhyItFailed();
    void failsWithoutAThread();
};

void WriteTest::writesAFile_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("speed");
    QTest::newRow("raw") << "image.bin" << 0;
    QTest::newRow("raw, fast") << "image.bin" << 1;
    QTest::newRow("records") << "image.mot" << 0;
    QTest::newRow("records, fast") << "image.mot" << 1;
}

void WriteTest::writesAFile() {
    QFETCH(const QString, name);
    QFETCH(const int, speed);
    WriteFixture main;
    const std::vector<std::uint8_t> image = patternImage(3000);
    const std::string text = motText(image);
    const ImageFile file(name.toStdString(),
                         name.endsWith("mot") ? std::vector<std::uint8_t>(text.begin(), text.end())
                                              : image);
    const std::vector<std::uint8_t> expected = flashAfter(image, main.board.codeFlash());
    main.path.setText(QString::fromStdString(file.path()));
    main.speeds.setCurrentIndex(speed);
    QVERIFY(main.write());
    QCOMPARE(main.messages, QStringList{SUCCEEDED});
    QCOMPARE(main.log(), SUCCESS_LOG);
    QVERIFY(main.board.codeFlash() == expected);
    QCOMPARE(main.board.violations(), std::size_t{0});
    QCOMPARE(main.delegate.contextInfo().pResultInfo->Result, RESULT_OK);
    QVERIFY(main.window.isMiniaturizeEnabled());
    QVERIFY(main.areControls(true));
    QCOMPARE(main.count("0x00000000"), 1);
    QCOMPARE(main.count("Progresswindow closed!!"), 1);
}

// A file of records is written as it is by the reader of raw images, digits and all.
void WriteTest::goesByTheExtension_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("asRecords");
    QTest::newRow("mot") << "image.mot" << true;
    QTest::newRow("MOT") << "image.MOT" << true;
    QTest::newRow("two dots") << "image.bin.MoT" << true;
    QTest::newRow("BIN") << "image.BIN" << false;
    QTest::newRow("mot before the last dot") << "image.mot.bin" << false;
}

void WriteTest::goesByTheExtension() {
    QFETCH(const QString, name);
    QFETCH(const bool, asRecords);
    WriteFixture main;
    const std::vector<std::uint8_t> image = patternImage(100);
    const std::string text = motText(image);
    const ImageFile file(name.toStdString(), text);
    const auto expected =
        flashAfter(asRecords ? image : std::vector<std::uint8_t>(text.begin(), text.end()),
                   main.board.codeFlash());
    main.path.setText(QString::fromStdString(file.path()));
    QVERIFY(main.write());
    QCOMPARE(main.log(), SUCCESS_LOG);
    QVERIFY(main.board.codeFlash() == expected);
}

void WriteTest::showsProgressOnTheSheet() {
    WriteFixture main;
    const ImageFile file("image.bin", patternImage(3000));
    main.path.setText(QString::fromStdString(file.path()));
    std::vector<int> values;
    QTimer::singleShot(0, [&] { // the sheet is made by the first write
        auto* bar = main.window.findChild<QProgressBar*>("progressBar");
        values.push_back(bar->value());
        QObject::connect(bar, &QProgressBar::valueChanged, bar,
                         [&](int value) { values.push_back(value); });
    });
    QString lastText;
    QVERIFY(main.write(
        [&](QDialog&) { lastText = main.window.findChild<QLabel*>("progressLabel")->text(); }));
    QCOMPARE(lastText, "Writing data. (100 %)");
    QVERIFY(values.size() > 5);
    QVERIFY(std::ranges::is_sorted(values));
    QCOMPARE(values.back(), 100);
}

void WriteTest::showsTheResultAboveTheSheet() {
    WriteFixture main;
    const ImageFile file("image.bin", patternImage(100));
    main.path.setText(QString::fromStdString(file.path()));
    bool isSheetUp = false;
    bool isModal = false;
    bool isMiniaturizeEnabled = true;
    QVERIFY(main.write([&](QDialog& result) {
        isSheetUp = main.window.isSheetUp();
        isModal = result.windowModality() == Qt::ApplicationModal;
        isMiniaturizeEnabled = main.window.isMiniaturizeEnabled();
    }));
    QVERIFY(isSheetUp && isModal && !isMiniaturizeEnabled);
    QCOMPARE(QApplication::activeModalWidget(), nullptr);
    main.type(main.monitorSpeeds, "19200");
    QCOMPARE(main.monitorSpeeds.currentText(), "19200");
}

void WriteTest::clearsTheLogOfTheWriteBefore() {
    WriteFixture main;
    const ImageFile file("image.bin", patternImage(100));
    main.path.setText(QString::fromStdString(file.path()));
    for (int i = 0; i < 2; ++i) {
        QVERIFY(main.write());
        QCOMPARE(main.log(), SUCCESS_LOG);
        QCOMPARE(main.messages, QStringList{SUCCEEDED});
    }
}

void WriteTest::touchesWidgetsOnTheMainThreadOnly() {
    WriteFixture main;
    const ImageFile file("image.bin", patternImage(3000));
    main.path.setText(QString::fromStdString(file.path()));
    MainThreadWatch logChanges;
    MainThreadWatch progressChanges; // of a bar that changes together with its label
    QObject::connect(
        main.logView.document(), &QTextDocument::contentsChange, &main.logView,
        [&] { logChanges.see(); }, Qt::DirectConnection);
    QTimer::singleShot(0, [&] {
        auto* bar = main.window.findChild<QProgressBar*>("progressBar");
        QObject::connect(
            bar, &QProgressBar::valueChanged, bar, [&] { progressChanges.see(); },
            Qt::DirectConnection);
    });
    QVERIFY(main.write());
    QVERIFY(progressChanges.seen > 5);
    QVERIFY(progressChanges.isAlwaysMain);
    QVERIFY(logChanges.seen >= 6);
    QVERIFY(logChanges.isAlwaysMain);
}

void WriteTest::saysWhyItFailed_data() {
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("log");
    const QString mode = "## Programming Mode\n";
    const QString failed = "## Write Failed";
    QTest::newRow("silent board") << QByteArray("silence") << "0x00002009" << mode + failed;
    QTest::newRow("refused erase")
        << QByteArray("status:0x10@5") << "0x00002007"
        << mode + "## Block Blank Check & Erace..." +
               QString::fromStdString(
                   SequenceDriver<NSTargetFile, NSSequenceProcessorDelegate>::getResultText(
                       RESULT_COMMAND_FRAME_ABORT)) +
               failed;
    QTest::newRow("no such file") << QByteArray("missing-file") << "0x00003000" << mode + failed;
}

void WriteTest::saysWhyItFailed() {
    QFETCH(const QByteArray, fault);
    QFETCH(const QString, code);
    QFETCH(const QString, log);
    const bool isFileMissing = fault == "missing-file";
    WriteFixture main(fastBoard(isFileMissing ? nullptr : fault.constData()));
    const ImageFile file("image.bin", patternImage(100));
    main.path.setText(QString::fromStdString(file.path()) + (isFileMissing ? ".no" : ""));
    QVERIFY(main.write());
    QCOMPARE(main.messages.size(), 1);
    QVERIFY2(main.messages[0].contains("ERROR:" + code + "\n"), qPrintable(main.messages[0]));
    QCOMPARE(main.log(), log);
    QVERIFY(main.window.isMiniaturizeEnabled());
    QVERIFY(main.areControls(true));
}

void WriteTest::failsWithoutAThread() {
    WriteFixture main;
    const ImageFile file("image.bin", patternImage(100));
    main.path.setText(QString::fromStdString(file.path()));
    main.delegate.addLogDispTextView("of the write before\n");
    const ResultWindowAnswer answer;
    failThreadCreation = true;
    main.writeButton.click();
    failThreadCreation = false;
    QTRY_VERIFY(!main.window.isSheetUp());
    QCOMPARE(answer.messages.size(), 1);
    QVERIFY(answer.messages[0].contains("ERROR:0x00002000\n"));
    QVERIFY2(answer.advice[0].contains("thread"), qPrintable(answer.advice[0]));
    QVERIFY(main.log().isEmpty());
    QVERIFY(main.window.isMiniaturizeEnabled());
    QVERIFY(main.write());
    QCOMPARE(main.log(), SUCCESS_LOG);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::WriteTest)
#include "WriteTest.moc"
