// The threads that the window has besides the main one run out of memory, at each allocation by
// turns: what they look up is told all the same, and what they cannot do is told as failed.
#include "advice/FormAdvice.h"
#include "sequence/context/DiagnosticLog.h"
#include "tests/support/FailingNew.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/ResultWindowAnswer.h"
#include "tests/ui/app/StatusFixture.h"

#include <QApplication>
#include <QTest>

#include <chrono>
#include <climits>
#include <string>

namespace flashwriter::testing {

namespace {

constexpr std::chrono::seconds LONG{20}; // which only a hang exceeds

} // namespace

class ScarceThreadsTest : public QObject {
    Q_OBJECT

private slots:
    void findsOutAboutTheForm_data();
    void findsOutAboutTheForm();
    void tellsThatThePortHasGone();
    void doesNotTellOfWaitingForWhatIsNotLookedAt();
    void advisesAboutTheMonitor();

private:
    PseudoTerminal m_terminal;
};

void ScarceThreadsTest::findsOutAboutTheForm_data() {
    QTest::addColumn<QString>("port");
    QTest::addColumn<int>("slowness");
    QTest::newRow("no port") << "/dev/nowhere-at-all" << INT_MAX;
    // Looks through all processes for those that hold the port: the more there are, the more
    // allocations, one like the other. Behind the 40th they are taken at growing distances.
    QTest::newRow("port") << m_terminal.portPath() << 40;
}

// The answer is the one of a run without want, since it is looked up again.
void ScarceThreadsTest::findsOutAboutTheForm() {
    QFETCH(const QString, port);
    QFETCH(const int, slowness);
    const auto look = [path = port.toStdString()] {
        return formAdvice(formFacts(path, false, "image.bin")).text;
    };
    const std::string expected = look();
    const MainThreadQueue queue;
    bool hasFailed = true;
    for (int n = 1; hasFailed; n += 1 + n / slowness) {
        Lookup lookup(queue);
        std::string given;
        const FailingNewElsewhere failing(n);
        QVERIFY(lookup.ask(
            look, [&](const std::string& text) { given = text; }, LONG));
        hasFailed = FailingNewElsewhere::hasFailed();
        QCOMPARE(given, expected);
        QVERIFY(!lookup.isWaiting());
        QVERIFY(n > 10 || hasFailed);
    }
}

void ScarceThreadsTest::tellsThatThePortHasGone() {
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        const StatusFixture form;
        form.line->hold("The serial monitor is open.", "/dev/nowhere-at-all");
        const FailingNewElsewhere failing(n);
        form.line->refresh();
        QTRY_VERIFY2(form.label.text().contains("has gone"), qPrintable(form.label.text()));
        hasFailed = FailingNewElsewhere::hasFailed();
        QVERIFY(n > 3 || hasFailed);
    }
}

// Want that lasts: the line says nothing, looks again, and tells as soon as it can.
void ScarceThreadsTest::doesNotTellOfWaitingForWhatIsNotLookedAt() {
    const StatusFixture form;
    {
        const FailingNewElsewhere failing(1, INT_MAX);
        form.line->refresh();
        QVERIFY(!QTest::qWaitFor([&] { return !form.label.text().isEmpty(); }, 3000));
        QVERIFY(FailingNewElsewhere::hasFailed());
        QVERIFY(form.looks > 1);
    }
    QTRY_COMPARE(form.label.text(), NO_SPEED);
}

void ScarceThreadsTest::advisesAboutTheMonitor() {
    MainWindowFixture main;
    setDiagnosticSink([](const char*) {}); // the test's own would take memory
    main.window.show();
    main.choosePort("/dev/nowhere-at-all");
    bool hasFailed = true;
    for (int n = 1; hasFailed; ++n) {
        const ResultWindowAnswer answer;
        const FailingNewElsewhere failing(n);
        main.monitorButton.click();
        hasFailed = FailingNewElsewhere::hasFailed();
        QVERIFY(!main.delegate.isMonitorOpen());
        QVERIFY(main.areControls(true));
        QCOMPARE(main.monitorButton.text(), "Open");
        QCOMPARE(QApplication::activeModalWidget(), nullptr);
        QVERIFY2(
            answer.advice.value(0).contains("No such port: /dev/nowhere-at-all"),
            qPrintable(QString::number(n) + answer.messages.join(";") + answer.advice.join(";")));
        QVERIFY(n > 5 || hasFailed);
    }
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::ScarceThreadsTest)
#include "ScarceThreadsTest.moc"
