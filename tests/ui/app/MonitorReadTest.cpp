// What the open monitor shows of what the board sends, and the waits of its probe.
#include "tests/support/Eventually.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SerialRequests.h"
#include "tests/ui/app/MainWindowFixture.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTextDocument>

#include <sys/ioctl.h>

#include <atomic>
#include <cstdio>
#include <string_view>

namespace flashwriter::testing {

namespace {

using namespace std::string_view_literals;

constexpr int LOG_LIMIT = 65536;

std::atomic<std::size_t> received{0}; // bytes that the transport has put into its buffer

void countReceived(const char* line) {
    unsigned long size = 0;
    if (std::sscanf(line, "Receive Size : %lu", &size) == 1) {
        received += size;
    }
}

// The main window with an open monitor, which reads only when the test makes it.
struct ReadFixture : MainWindowFixture {
    ReadFixture() {
        setDiagnosticSink(countReceived);
        requests.plan = {{TIOCMGET, 0}, {TIOCMSET, 0}};
        terminal.makeRaw();
        choosePort(terminal.portPath());
        open();
    }
    ~ReadFixture() { delegate.MonitorPortClose(); }
    ReadFixture(const ReadFixture&) = delete;
    ReadFixture& operator=(const ReadFixture&) = delete;

    void open() {
        delegate.MonitorPortOpen();
        delegate.MonitorTimerStop();
    }
    // Returns when what the board sends is in the transport's buffer.
    void receive(std::string_view bytes) const {
        const std::size_t before = received;
        terminal.send({bytes.begin(), bytes.end()});
        eventually([&] { return received == before + bytes.size(); });
    }
    void tick(std::string_view bytes) {
        receive(bytes);
        delegate.MonitorTimeProc(nullptr);
    }
    void fillLog(int size) { delegate.addLogDispTextView(std::string(std::size_t(size), 'a')); }

    PseudoTerminal terminal;
    SerialRequests requests;
};

} // namespace

class MonitorReadTest : public QObject {
    Q_OBJECT

private slots:
    void losesWhatIsBehindANul();
    void joinsWhatIsCutBetweenTicks();
    void forgetsHalvesWhenItIsOpenedAgain();
    void discardsWhatIsLeftWhenItCloses();
    void keepsTheNewestCharacters_data();
    void keepsTheNewestCharacters();
    void aTickWithoutBytesChangesNothing();
    void timerFiresAtOnceAndThenAgainAndAgain();
    void timerStopsAndRestarts();
    void waitIsLongerThanAsked();
    void waitsForAWholeFrame_data();
    void waitsForAWholeFrame();
    void leavesTheFrameInTheBuffer();
};

void MonitorReadTest::losesWhatIsBehindANul() {
    ReadFixture main;
    main.tick("AB\0CD"sv);
    QCOMPARE(main.log(), "AB");
    main.tick("\0EF"sv);
    QCOMPARE(main.log(), "AB");
    main.tick("G\r\n"sv);
    QCOMPARE(main.log(), "ABG\n");
}

void MonitorReadTest::joinsWhatIsCutBetweenTicks() {
    ReadFixture main;
    for (const char byte : "\xC3\xA9\r\n\xE2\x82\xAC\xF0\x9F\x98\x80\xFF."sv) {
        main.tick(std::string_view(&byte, 1));
    }
    QCOMPARE(main.log(), QString::fromUcs4(U"\u00E9\n\u20AC\U0001F600\uFFFD."));
}

void MonitorReadTest::forgetsHalvesWhenItIsOpenedAgain() {
    ReadFixture main;
    main.tick("\xE2\x82"sv);
    main.delegate.MonitorPortClose();
    main.open();
    main.tick("a"sv);
    QCOMPARE(main.log(), "a");
}

void MonitorReadTest::discardsWhatIsLeftWhenItCloses() {
    ReadFixture main;
    main.receive("old"sv);
    main.delegate.MonitorPortClose();
    main.open();
    main.tick("new"sv);
    QCOMPARE(main.log(), "new");
}

void MonitorReadTest::keepsTheNewestCharacters_data() {
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("kept"); // of those
    QTest::newRow("room is left") << LOG_LIMIT - 11 << LOG_LIMIT - 11;
    QTest::newRow("just full") << LOG_LIMIT - 10 << LOG_LIMIT - 10;
    QTest::newRow("one too many") << LOG_LIMIT - 9 << LOG_LIMIT - 10;
    QTest::newRow("full before") << LOG_LIMIT << LOG_LIMIT - 10;
    QTest::newRow("more than full before") << LOG_LIMIT + 5000 << LOG_LIMIT - 10;
}

void MonitorReadTest::keepsTheNewestCharacters() {
    QFETCH(const int, before);
    QFETCH(const int, kept);
    ReadFixture main;
    main.fillLog(before);
    main.tick("0123\n56789"sv);
    QVERIFY(main.log() == QString(kept, 'a') + "0123\n56789");
}

void MonitorReadTest::aTickWithoutBytesChangesNothing() {
    ReadFixture main;
    main.fillLog(LOG_LIMIT + 1);
    main.delegate.MonitorTimeProc(nullptr);
    QCOMPARE(main.log().size(), LOG_LIMIT + 1);
}

void MonitorReadTest::timerFiresAtOnceAndThenAgainAndAgain() {
    ReadFixture main;
    main.receive("first "sv);
    QCOMPARE(main.delegate.MonitorTimerStart(), RESULT_OK);
    QCOMPARE(main.log(), "first ");

    int changes = 0;
    QElapsedTimer sinceStart;
    sinceStart.start();
    QObject::connect(main.logView.document(), &QTextDocument::contentsChange, &main.logView,
                     [&] { ++changes; });
    while (changes < 4 && sinceStart.elapsed() < 10000) {
        main.terminal.send({'x'});
        QTest::qWait(3);
    }
    QCOMPARE(changes, 4);
    QVERIFY(sinceStart.elapsed() >= 4 * 50 - 5);
}

void MonitorReadTest::timerStopsAndRestarts() {
    ReadFixture main;
    QCOMPARE(main.delegate.MonitorTimerStart(), RESULT_OK);
    QCOMPARE(main.delegate.MonitorTimerStart(), RESULT_OK);
    main.delegate.MonitorTimerStop();
    main.receive("unseen"sv);
    QTest::qWait(120);
    QVERIFY(main.log().isEmpty());
    main.delegate.MonitorTimerStop();
    QCOMPARE(main.delegate.MonitorTimerStart(), RESULT_OK);
    QCOMPARE(main.log(), "unseen");
    main.receive(", seen"sv);
    QTRY_COMPARE(main.log(), "unseen, seen");
}

void MonitorReadTest::waitIsLongerThanAsked() {
    for (const std::uint64_t milliseconds : {0U, 1U, 2U, 20U}) {
        QElapsedTimer timer;
        timer.start();
        const std::uint64_t elapsed = AppDelegate::wait(milliseconds);
        QVERIFY(elapsed > milliseconds);
        // The clock that it reads ticks in milliseconds; the part of one that has passed is free.
        QVERIFY(timer.nsecsElapsed() > static_cast<qint64>(milliseconds) * 1000000);
    }
}

void MonitorReadTest::waitsForAWholeFrame_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<qulonglong>("result");
    QTest::addColumn<qulonglong>("length");
    const auto row = [](const char* name, const QByteArray& bytes, ResultCode result,
                        qulonglong length) {
        QTest::newRow(name) << bytes << qulonglong{result} << length;
    };
    row("nothing", "", RESULT_RECEIVE_TIMEOUT, 0);
    row("one byte", "\x02", RESULT_RECEIVE_TIMEOUT, 0);
    row("its beginning", "\x02\x01", RESULT_RECEIVE_TIMEOUT, 5);
    row("one byte short", "\x02\x01\x06\xF9", RESULT_RECEIVE_TIMEOUT, 5);
    row("whole", "\x02\x01\x06\xF9\x03", RESULT_OK, 5);
    row("whole and more", "\x02\x01\x06\xF9\x03\x02\x09", RESULT_OK, 5);
    row("whatever it says", "\x02\x01???", RESULT_OK, 5);
    row("empty", QByteArray("\x02\0??", 4), RESULT_OK, 4);
    row("longest", QByteArray("\x02\xFF") + QByteArray(257, '?'), RESULT_OK, 259);
    row("longest, one byte short", QByteArray("\x02\xFF") + QByteArray(256, '?'),
        RESULT_RECEIVE_TIMEOUT, 259);
    row("behind something else", "?\x02\x01\x06\xF9\x03", RESULT_RECEIVE_TIMEOUT, 0);
    row("a command frame", "\x01\x01\x06\xF9\x03", RESULT_RECEIVE_TIMEOUT, 0);
}

void MonitorReadTest::waitsForAWholeFrame() {
    QFETCH(const QByteArray, bytes);
    QFETCH(const qulonglong, result);
    QFETCH(const qulonglong, length);
    ReadFixture main;
    main.receive({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    std::uint64_t frameLength = 12345;
    QElapsedTimer timer;
    timer.start();
    const std::uint64_t timeout = result == RESULT_OK ? 2000 : 20;
    QCOMPARE(main.delegate.waitStatusFrames(frameLength, timeout), result);
    QCOMPARE(frameLength, length);
    QCOMPARE(timer.elapsed() >= static_cast<qint64>(timeout), result != RESULT_OK);
}

void MonitorReadTest::leavesTheFrameInTheBuffer() {
    ReadFixture main;
    main.receive("\x02\x01???"sv);
    std::uint64_t frameLength = 0;
    QCOMPARE(main.delegate.waitStatusFrames(frameLength, 2000), RESULT_OK);
    QCOMPARE(main.delegate.waitStatusFrames(frameLength, 2000), RESULT_OK);
    main.delegate.MonitorTimeProc(nullptr);
    QCOMPARE(main.log(), "\x02\x01???");
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::MonitorReadTest)
#include "MonitorReadTest.moc"
