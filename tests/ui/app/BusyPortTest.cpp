// While the system takes its time with the port the window lives, and nothing begins in it.
#include "app/PortWork.h"
#include "board/VirtualBoard.h"
#include "tests/ui/app/MainWindowFixture.h"

#include <QAction>
#include <QApplication>
#include <QTest>
#include <QTimer>

#include <chrono>
#include <new>
#include <thread>

namespace flashwriter::testing {

namespace {

using namespace std::chrono_literals;

// Closes the windows that have come up over the main one, one at each interval, and counts them.
class WindowCount {
public:
    explicit WindowCount(std::chrono::milliseconds interval) {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            if (QWidget* over = QApplication::activeModalWidget()) {
                ++windows;
                over->close();
            }
        });
        m_timer.start(interval);
    }
    int windows = 0;

private:
    QTimer m_timer;
};

} // namespace

class BusyPortTest : public QObject {
    Q_OBJECT

private slots:
    void livesWhenItCannotSayWhatItWaitsFor();
    void opensNoWindowMeanwhile();
    void opensNoWindowOverAnother();
};

void BusyPortTest::livesWhenItCannotSayWhatItWaitsFor() {
    NSFileDropWindow window;
    bool isTold = false;
    PortWork work(window, [&] {
        isTold = true;
        throw std::bad_alloc();
    });
    int looks = 0;
    QTimer alive;
    QObject::connect(&alive, &QTimer::timeout, &alive, [&] { looks += isTold ? 1 : 0; });
    alive.start(20ms);
    work.run([] { std::this_thread::sleep_for(3s); });
    QVERIFY(isTold);
    QVERIFY2(looks > 5, qPrintable(QString::number(looks)));
    QVERIFY(!work.isBusy());
}

// A menu entry is chosen by a screen reader, or from a bar that the desktop shows elsewhere.
void BusyPortTest::opensNoWindowMeanwhile() {
    board::VirtualBoard board;
    board::BoardOptions silent; // it is asked for a second and a half
    silent.faults = {board::parseFault("silence")};
    board.start(silent);
    MainWindowFixture main;
    main.choosePort(board.portPath());
    main.window.show();
    auto* about = main.window.findChild<QAction*>("aboutAction");
    const WindowCount count(5ms);
    QString status;
    QTimer::singleShot(500ms, &main.window, [&] {
        status = main.status.text();
        about->trigger();
    });
    main.monitorButton.click();
    QVERIFY(main.delegate.isMonitorOpen());
    QCOMPARE(status, "Asking the board…");
    QCOMPARE(count.windows, 0);
    about->trigger();
    QCOMPARE(count.windows, 1);
}

void BusyPortTest::opensNoWindowOverAnother() {
    MainWindowFixture main;
    main.window.show();
    auto* about = main.window.findChild<QAction*>("aboutAction");
    const WindowCount count(200ms);
    QTimer::singleShot(0, &main.window, [&] { about->trigger(); });
    about->trigger();
    QCOMPARE(count.windows, 1);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::BusyPortTest)
#include "BusyPortTest.moc"
