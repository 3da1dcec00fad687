// The monitor's question at which level of DTR the board answers, and the levels that follow.
#include "board/VirtualBoard.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/ResultWindowAnswer.h"

#include <QTest>

#include <chrono>
#include <vector>

namespace flashwriter::testing {

namespace {

using board::TranscriptRecord;
using board::VirtualBoard;

// Opening and closing of the port and the changes of DTR, in order.
QStringList portAndDtr(const VirtualBoard& board) {
    QStringList changes;
    for (const TranscriptRecord& record : board.transcript()) {
        for (const QString& change : QString::fromStdString(record.meaning).split(", ")) {
            if (record.kind == TranscriptRecord::Kind::line &&
                (change.startsWith("port") || change.startsWith("DTR"))) {
                changes.append(change);
            }
        }
    }
    return changes;
}

std::ptrdiff_t hostFrames(const VirtualBoard& board) {
    return std::ranges::count(board.transcript(), TranscriptRecord::Kind::hostFrame,
                              &TranscriptRecord::kind);
}

board::BoardOptions fastBoard(const char* fault = nullptr) {
    board::BoardOptions options;
    options.pace = false;
    if (fault != nullptr) {
        options.faults = {board::parseFault(fault)};
    }
    return options;
}

const QStringList PROBED{"port opened", "DTR on", "DTR off", "DTR on", "port closed", "DTR off"};
const QStringList NOT_ANSWERED{"port opened", "DTR on", "DTR off", "port closed"};

} // namespace

class MonitorProbeTest : public QObject {
    Q_OBJECT

private slots:
    void aBoardThatAnswersRunsWithDtrOff();
    void aBoardThatDoesNotAnswerRunsWithDtrOn();
    void goesByTheTimeOfTheFrame_data();
    void goesByTheTimeOfTheFrame();
    void asksAnewEachTime();
    void withoutAPortAsksNobody();
    void withoutADeviceAsksNobody();
    void aNameThatIsTooLongAsksNobody();
    void refusesAnUnknownSpeedIndex();
    void quittingClosesTheMonitor();
};

void MonitorProbeTest::aBoardThatAnswersRunsWithDtrOff() {
    VirtualBoard board;
    board.start(fastBoard());
    MainWindowFixture main;
    main.choosePort(board.portPath());
    main.monitorButton.click();
    QVERIFY(main.delegate.isMonitorOpen());
    QVERIFY(main.delegate.isInvertDTR());
    QCOMPARE(DiagnosticLines::all(), (Lines{"task_error:", "DTR=true"}));
    QVERIFY(main.log().isEmpty());
    const QStringList opened = PROBED + QStringList{"port opened", "DTR on", "DTR off"};
    QTRY_COMPARE(portAndDtr(board), opened);
    QCOMPARE(hostFrames(board), 1);
    QCOMPARE(board.violations(), std::size_t{0});

    main.monitorButton.click();
    QVERIFY(!main.delegate.isMonitorOpen());
    QVERIFY(board.waitForClosings(2, std::chrono::seconds(5)));
    QCOMPARE(portAndDtr(board), opened + QStringList({"DTR on", "port closed", "DTR off"}));
}

void MonitorProbeTest::aBoardThatDoesNotAnswerRunsWithDtrOn() {
    board::BoardOptions options = fastBoard();
    options.target.invertedDtr = true;
    VirtualBoard board;
    board.start(options);
    MainWindowFixture main;
    main.choosePort(board.portPath());
    main.delegate.pushMonitorOpen(nullptr);
    QVERIFY(main.delegate.isMonitorOpen());
    QVERIFY(!main.delegate.isInvertDTR());
    QCOMPARE(DiagnosticLines::all(), (Lines{"task_error:", "DTR=false"}));
    const QStringList opened = NOT_ANSWERED + QStringList{"port opened", "DTR on"};
    QTRY_COMPARE(portAndDtr(board), opened);

    main.delegate.pushMonitorOpen(nullptr);
    QVERIFY(board.waitForClosings(2, std::chrono::seconds(5)));
    QCOMPARE(portAndDtr(board), opened + QStringList({"DTR off", "port closed"}));
}

void MonitorProbeTest::goesByTheTimeOfTheFrame_data() {
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<bool>("answered");
    QTest::addColumn<int>("frames");
    QTest::newRow("a refusal is an answer") << QByteArray("status:0x15") << true << 1;
    QTest::newRow("so is a frame with a wrong sum") << QByteArray("wrong-sum") << true << 1;
    QTest::newRow("so is one of another size") << QByteArray("resized:9") << true << 1;
    QTest::newRow("a late answer to the first frame") << QByteArray("delay:150") << true << 1;
    QTest::newRow("one that comes after its time-out") << QByteArray("delay:250") << false << 2;
    QTest::newRow("an answer to the second frame") << QByteArray("slow-entry") << false << 2;
    QTest::newRow("an answer to the third frame") << QByteArray("slow-entry:400") << false << 3;
    QTest::newRow("something else") << QByteArray("wrong-start:0x01") << false << 5;
}

void MonitorProbeTest::goesByTheTimeOfTheFrame() {
    QFETCH(const QByteArray, fault);
    QFETCH(const bool, answered);
    QFETCH(const int, frames);
    VirtualBoard board;
    board.start(fastBoard(fault.constData()));
    MainWindowFixture main;
    main.choosePort(board.portPath());
    main.delegate.DtrCheck();
    QCOMPARE(main.delegate.isInvertDTR(), answered);
    QCOMPARE(DiagnosticLines::all().back(), answered ? "DTR=true" : "DTR=false");
    QVERIFY(!main.delegate.isMonitorOpen());
    QVERIFY(main.areControls(true));
    QVERIFY(board.waitForClosings(1, std::chrono::seconds(5)));
    QCOMPARE(portAndDtr(board), answered ? PROBED : NOT_ANSWERED);
    const auto transcript = board.transcript();
    const auto sent = std::ranges::count_if(transcript, [](const TranscriptRecord& record) {
        return record.bytes == board::Bytes{0x01, 0x03, 0x9A, 0x00, 0x21, 0x42, 0x03};
    });
    QCOMPARE(sent, frames);
}

// What an earlier board answered does not count.
void MonitorProbeTest::asksAnewEachTime() {
    VirtualBoard board;
    board.start(fastBoard());
    MainWindowFixture main;
    main.choosePort(board.portPath());
    for (int i = 0; i < 3; ++i) {
        main.delegate.pushMonitorOpen(nullptr);
        QVERIFY(main.delegate.isInvertDTR());
        main.delegate.pushMonitorOpen(nullptr);
    }
    QCOMPARE(main.count("DTR=true"), 3);
    QVERIFY(board.waitForClosings(6, std::chrono::seconds(5)));
}

void MonitorProbeTest::withoutAPortAsksNobody() {
    MainWindowFixture main;
    main.ports.clear();
    const ResultWindowAnswer answer;
    main.delegate.pushMonitorOpen(nullptr);
    QCOMPARE(DiagnosticLines::all(), (Lines{"task_error:", "DTR=false", "Result Window closed!!"}));
    QCOMPARE(answer.messages.size(), 1);
    QVERIFY(answer.messages[0].contains("ERROR:0x00001001"));
}

void MonitorProbeTest::withoutADeviceAsksNobody() {
    MainWindowFixture main;
    main.choosePort("/dev/none");
    main.delegate.DtrCheck();
    QCOMPARE(DiagnosticLines::all(), (Lines{"task_error:", "DTR=false"}));
    QVERIFY(!main.delegate.isInvertDTR());
    QVERIFY(!main.delegate.isMonitorOpen());
}

void MonitorProbeTest::aNameThatIsTooLongAsksNobody() {
    MainWindowFixture main;
    main.choosePort(std::string(260, 'p'));
    main.delegate.DtrCheck();
    QCOMPARE(DiagnosticLines::all(), (Lines{"task_error:", "DTR=false"}));
    QVERIFY(main.log().isEmpty());
}

void MonitorProbeTest::refusesAnUnknownSpeedIndex() {
    VirtualBoard board;
    board.start(fastBoard());
    MainWindowFixture main;
    main.choosePort(board.portPath());
    main.delegate.MonitorPortOpen();
    QCOMPARE(main.delegate.comBaudRateSetProc(4, 33), RESULT_PARAMETER_ERROR);
    QCOMPARE(hostFrames(board), 0);
}

void MonitorProbeTest::quittingClosesTheMonitor() {
    VirtualBoard board;
    board.start(fastBoard());
    MainWindowFixture main;
    main.choosePort(board.portPath());
    main.delegate.pushMonitorOpen(nullptr);
    QVERIFY(main.delegate.isMonitorOpen());
    QVERIFY(main.delegate.applicationShouldTerminateAfterLastWindowClosed(nullptr));
    QVERIFY(!main.delegate.isMonitorOpen());
    QVERIFY(board.waitForClosings(2, std::chrono::seconds(5)));
    QCOMPARE(portAndDtr(board).mid(9), (QStringList{"DTR on", "port closed", "DTR off"}));
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::MonitorProbeTest)
#include "MonitorProbeTest.moc"
