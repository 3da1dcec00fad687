#include "ui/MainThreadQueue.h"

#include <QEventLoop>
#include <QTest>

#include <memory>
#include <thread>
#include <vector>

namespace flashwriter::testing {

class MainThreadQueueTest : public QObject {
    Q_OBJECT

private slots:
    void runsTasksOfAnotherThreadInTheirOrder();
    void runsATaskOfTheMainThreadAtOnce();
    void runsTasksBehindOneThatOpensALoop();
    void dropsWhatIsLeftWhenItEnds();
    void outlivesItself();
};

void MainThreadQueueTest::runsTasksOfAnotherThreadInTheirOrder() {
    constexpr int COUNT = 1000;
    MainThreadQueue queue;
    std::vector<int> seen;
    bool isAlwaysMain = true;
    std::thread worker([&, post = queue.queue()] {
        for (int i = 0; i < COUNT; ++i) {
            post([&, i] {
                isAlwaysMain = isAlwaysMain && QThread::currentThread() == qApp->thread();
                seen.push_back(i);
            });
        }
    });
    QTRY_COMPARE(seen.size(), std::size_t{COUNT});
    worker.join();
    QVERIFY(isAlwaysMain);
    for (int i = 0; i < COUNT; ++i) {
        QCOMPARE(seen[static_cast<std::size_t>(i)], i);
    }
}

void MainThreadQueueTest::runsATaskOfTheMainThreadAtOnce() {
    const MainThreadQueue queue;
    bool hasRun = false;
    queue.run([&] { hasRun = true; });
    QVERIFY(hasRun);

    hasRun = false;
    std::thread([&] { queue.run([&] { hasRun = true; }); }).join();
    QVERIFY(!hasRun);
    QTRY_VERIFY(hasRun);
}

void MainThreadQueueTest::runsTasksBehindOneThatOpensALoop() {
    const MainThreadQueue queue;
    const auto post = queue.queue();
    QEventLoop inner;
    bool isInnerOver = false;
    post([&] {
        inner.exec();
        isInnerOver = true;
    });
    post([&] { inner.quit(); });
    QTRY_VERIFY(isInnerOver);
}

void MainThreadQueueTest::dropsWhatIsLeftWhenItEnds() {
    const auto owned = std::make_shared<int>(0);
    bool hasRun = false;
    {
        const MainThreadQueue queue;
        queue.queue()([&hasRun, owned] { hasRun = true; });
    }
    QCoreApplication::processEvents();
    QVERIFY(!hasRun);
    QCOMPARE(owned.use_count(), 1L);
}

void MainThreadQueueTest::outlivesItself() {
    MainQueue post;
    {
        const MainThreadQueue queue;
        post = queue.queue();
    }
    bool hasRun = false;
    post([&] { hasRun = true; });
    QCoreApplication::processEvents();
    QVERIFY(!hasRun);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::MainThreadQueueTest)
#include "MainThreadQueueTest.moc"
