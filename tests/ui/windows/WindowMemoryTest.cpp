// What other threads tell the windows, when memory runs out meanwhile.
#include "tests/support/FailingNew.h"
#include "tests/ui/windows/Outcomes.h"
#include "ui/MainThreadQueue.h"
#include "ui/NSFileDropWindow.h"
#include "ui/ProgressWindowController.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QTest>
#include <QTimer>

#include <array>
#include <new>
#include <thread>

namespace flashwriter::testing {

namespace {

// Runs an action on a thread of its own, whose n-th allocation fails; false when there was none.
template <class Action>
bool runShortOfMemory(int n, const Action& action) {
    bool hasFailed = false;
    std::thread([&] {
        const FailingNew failing(n);
        action();
        hasFailed = FailingNew::hasFailed();
    }).join();
    return hasFailed;
}

} // namespace

class WindowMemoryTest : public QObject {
    Q_OBJECT

private slots:
    void losesNoTask();
    void losesNoTaskBehindOneThatFails();
    void losesNoResult();
    void losesNoAdvice();
};

// The task's own memory is taken before, by whoever makes it.
void WindowMemoryTest::losesNoTask() {
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        const MainThreadQueue queue;
        std::vector<int> seen;
        std::array<std::function<void()>, 2> tasks{[&] { seen.push_back(1); },
                                                   [&] { seen.push_back(2); }};
        hasFailed = runShortOfMemory(n, [&, post = queue.queue()] {
            post(std::move(tasks[0]));
            post(std::move(tasks[1]));
        });
        QTRY_COMPARE(seen, (std::vector<int>{1, 2}));
        QVERIFY(n > 2 || hasFailed);
    }
}

void WindowMemoryTest::losesNoTaskBehindOneThatFails() {
    const MainThreadQueue queue;
    bool hasRun = false;
    queue.queue()([] { throw std::bad_alloc(); });
    queue.queue()([&] { hasRun = true; });
    QTRY_VERIFY(hasRun);
}

void WindowMemoryTest::losesNoResult() {
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        const MainThreadQueue queue;
        NSFileDropWindow main;
        ProgressWindowController progress(queue);
        progress.setMainWindow(&main);
        progress.beginSheet();
        _RESULTINFO outcome{};
        outcome.Result = RESULT_CHECKSUM_MISMATCH;
        _CONTEXTINFO context{};
        context.pResultInfo = &outcome;
        hasFailed = runShortOfMemory(n, [&] { progress.setResult(context); });
        QLabel* message = nullptr;
        QTRY_VERIFY((message = progress.result().resultWindow().findChild<QLabel*>(
                         "resultMessage")) != nullptr &&
                    message->text().contains("ERROR:"));
    }
}

// The thread that looks for it is the one without memory.
void WindowMemoryTest::losesNoAdvice() {
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        const MainThreadQueue queue;
        ProgressWindowController progress(queue);
        const FailingNewElsewhere failing(n);
        setResult(progress, failure(RESULT_FILE_NOT_FOUND, 0));
        const auto* advice = progress.result().resultWindow().findChild<QLabel*>("resultAdvice");
        QTRY_VERIFY2(advice->text().startsWith("No such file: "), qPrintable(advice->text()));
        hasFailed = FailingNewElsewhere::hasFailed();
        QVERIFY(n > 5 || hasFailed);
    }
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::WindowMemoryTest)
#include "WindowMemoryTest.moc"
