// The sheet keeps mouse and keyboard from the main window. Screen readers and other programs press
// its buttons past that, and must not disturb the write either.
#include "board/VirtualBoard.h"
#include "tests/support/ImageFile.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/ResultWindowAnswer.h"

#include <QAccessible>
#include <QApplication>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <cstring>
#include <functional>

namespace flashwriter::testing {

namespace {

board::BoardOptions fastBoard() {
    board::BoardOptions options;
    options.pace = false;
    options.target.flash.codeKib = 16;
    return options;
}

void pressAccessibly(QPushButton& button) {
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&button);
    interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
}

// Cancels each panel for files that comes up, so that one that should not be there ends.
class PanelCancel {
public:
    PanelCancel() {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [] {
            if (auto* panel = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
                panel->reject();
            }
        });
        m_timer.start(std::chrono::milliseconds(5));
    }

private:
    QTimer m_timer;
};

struct GuardFixture : MainWindowFixture {
    GuardFixture() {
        board.start(fastBoard());
        choosePort(board.portPath());
        path.setText(QString::fromStdString(file.path()));
        window.show();
    }

    // Writes, and disturbs it as soon as the sheet is up. A press by a screen reader takes effect
    // a moment later, so the result stays for longer than that.
    bool writeAnd(const std::function<void()>& disturb) {
        constexpr qint64 MOMENT = 400; // milliseconds
        QElapsedTimer sinceStart;
        const ResultWindowAnswer answer(
            [](QDialog&) {},
            [&] { return log().contains("## Write ") && sinceStart.elapsed() > MOMENT; });
        sinceStart.start();
        writeButton.click();
        before = delegate.contextInfo();
        disturb();
        const bool hasEnded = QTest::qWaitFor([this] { return !window.isSheetUp(); }, 20000);
        messages = answer.messages;
        return hasEnded;
    }

    void act(const QString& way) {
        if (way == "write") {
            pressAccessibly(writeButton);
        } else if (way == "open") {
            pressAccessibly(monitorButton);
        } else if (way == "update") {
            pressAccessibly(updateButton);
        } else if (way == "pushWrite") {
            delegate.pushWrite(nullptr);
        } else if (way == "pushMonitorOpen") {
            delegate.pushMonitorOpen(nullptr);
        } else if (way == "pushUpdating") {
            delegate.pushUpdating(nullptr);
        } else {
            delegate.pushSelect(nullptr);
        }
    }

    std::vector<std::uint8_t> image = patternImage(3000);
    ImageFile file{"image.bin", image};
    board::VirtualBoard board;
    _CONTEXTINFO before{};
    QStringList messages;
};

} // namespace

class SheetGuardTest : public QObject {
    Q_OBJECT

private slots:
    static void initTestCase() { QApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
    void nothingDisturbsTheWrite_data();
    void nothingDisturbsTheWrite();
};

void SheetGuardTest::nothingDisturbsTheWrite_data() {
    QTest::addColumn<QString>("way");
    for (const char* way : {"write", "open", "update", "pushWrite", "pushMonitorOpen",
                            "pushUpdating", "pushSelect"}) {
        QTest::newRow(way) << QString(way);
    }
}

void SheetGuardTest::nothingDisturbsTheWrite() {
    QFETCH(const QString, way);
    GuardFixture main;
    const PanelCancel cancel;
    const std::vector<std::uint8_t> expected = flashAfter(main.image, main.board.codeFlash());
    const QString port = main.ports.currentText();
    const QStringList items = main.items(main.ports);
    const bool hasEnded = main.writeAnd([&] {
        main.path.setText("/tmp/other.mot"); // what a second write would be about
        main.act(way);
    });
    QVERIFY(hasEnded);
    QCOMPARE(main.messages, QStringList{"The writing processing succeeded. "});
    const _CONTEXTINFO& context = main.delegate.contextInfo();
    QCOMPARE(context.TargetFileInfo.FilePath, main.before.TargetFileInfo.FilePath);
    QCOMPARE(context.PortName, main.before.PortName);
    QVERIFY(context.pResultInfo == main.before.pResultInfo);
    QCOMPARE(context.pResultInfo->Result, RESULT_OK);
    QVERIFY(!main.delegate.isMonitorOpen());
    QCOMPARE(main.count("Cancel button was pressed."), 0);
    QCOMPARE(main.ports.currentText(), port);
    QCOMPARE(main.items(main.ports), items);
    QVERIFY(main.board.waitForClosings(1, std::chrono::seconds(5)));
    QVERIFY(main.board.codeFlash() == expected);
    QTest::qWait(50);
    QVERIFY(!main.window.isSheetUp()); // no second write either
    QCOMPARE(main.board.closings(), 1U);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::SheetGuardTest)
#include "SheetGuardTest.moc"
