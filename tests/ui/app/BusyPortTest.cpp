// While the system takes its time with the port the window lives.
#include "app/PortWork.h"
#include "ui/NSFileDropWindow.h"

#include <QTest>
#include <QTimer>

#include <chrono>
#include <new>
#include <thread>

namespace flashwriter::testing {

namespace {

using namespace std::chrono_literals;

} // namespace

class BusyPortTest : public QObject {
    Q_OBJECT

private slots:
    void livesWhenItCannotSayWhatItWaitsFor();
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

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::BusyPortTest)
#include "BusyPortTest.moc"
