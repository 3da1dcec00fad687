#include "ui/ResultWindowController.h"
#include "tests/ui/windows/Outcomes.h"

#include <QApplication>
#include <QLabel>
#include <QTest>

#include <thread>

namespace flashwriter::testing {

namespace {

const QString SUCCEEDED = "The writing processing succeeded. ";

} // namespace

class ResultWindowControllerTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void tellsOfSuccessOnly();
    void tellsOfAFailure_data();
    void tellsOfAFailure();
    void isLoadedWhenItIsAskedFor();
    void showsAnEmptyMessageAtFirst();
    void replacesItsText();
    void readsTheOutcomeBeforeItReturns();
    void showsAdviceUntilItIsEmpty();

private:
    QString message() { return label("resultMessage")->text(); }
    QLabel* label(const char* name) {
        return m_controller->resultWindow().findChild<QLabel*>(name);
    }

    MainThreadQueue m_queue;
    std::unique_ptr<ResultWindowController> m_controller;
};

void ResultWindowControllerTest::init() {
    m_controller = std::make_unique<ResultWindowController>(m_queue);
}

void ResultWindowControllerTest::tellsOfSuccessOnly() {
    QCOMPARE(setResult(*m_controller, failure(0, 2)), std::uint64_t{0});
    QCOMPARE(message(), SUCCEEDED);
}

void ResultWindowControllerTest::tellsOfAFailure_data() {
    QTest::addColumn<quint64>("code");
    QTest::addColumn<quint64>("retry");
    QTest::addColumn<QString>("lines");
    const QString tail = "\nST1 = 0x0A, DST1 = 0xFF, DST2 = 0x06\n";
    QTest::newRow("no retry") << quint64{0x2005} << quint64{0}
                              << "ERROR:0x00002005\nCOM = 0x40, Retry = 0" + tail;
    QTest::newRow("one retry") << quint64{0x2005} << quint64{1}
                               << "ERROR:0x00002005\nCOM = 0x40, Retry = 2" + tail;
    QTest::newRow("two retries") << quint64{0xABCD} << quint64{2}
                                 << "ERROR:0x0000ABCD\nCOM = 0x40, Retry = 3" + tail;
    QTest::newRow("more than eight digits")
        << quint64{0x123456789} << quint64{0} << "ERROR:0x123456789\nCOM = 0x40, Retry = 0" + tail;
    QTest::newRow("so many that they begin again")
        << quint64{1} << ~quint64{0} << "ERROR:0x00000001\nCOM = 0x40, Retry = 0" + tail;
}

// A label would draw the "\r" of its lines' ends.
void ResultWindowControllerTest::tellsOfAFailure() {
    QFETCH(quint64, code);
    QFETCH(quint64, retry);
    QFETCH(QString, lines);
    QCOMPARE(setResult(*m_controller, failure(code, retry)), std::uint64_t{0});
    QCOMPARE(message(), "The writing processing failed\n" + lines);
}

void ResultWindowControllerTest::isLoadedWhenItIsAskedFor() {
    const auto countWindows = [] { return QApplication::topLevelWidgets().size(); };
    const auto before = countWindows();
    m_controller->setAdvice("Try another cable.");
    QCOMPARE(countWindows(), before);
    setResult(*m_controller, failure(0x2005, 0));
    QCOMPARE(countWindows(), before + 1);
    QVERIFY(!m_controller->resultWindow().isVisible());
    QCOMPARE(label("resultAdvice")->text(), QString("Try another cable."));
    QCOMPARE(countWindows(), before + 1);
}

void ResultWindowControllerTest::showsAnEmptyMessageAtFirst() {
    QCOMPARE(message(), QString());
}

void ResultWindowControllerTest::replacesItsText() {
    setResult(*m_controller, failure(0x2005, 0));
    setResult(*m_controller, failure(0x2006, 0));
    QVERIFY(message().contains("0x00002006"));
    QVERIFY(!message().contains("0x00002005"));
    setResult(*m_controller, {});
    QCOMPARE(message(), SUCCEEDED);
}

void ResultWindowControllerTest::readsTheOutcomeBeforeItReturns() {
    setResult(*m_controller, {});
    std::thread([this] { setResult(*m_controller, failure(0x3001, 2)); }).join();
    QCOMPARE(message(), SUCCEEDED); // the main thread has not been there yet
    QTRY_VERIFY(message().contains("ERROR:0x00003001\nCOM = 0x40, Retry = 3"));
}

void ResultWindowControllerTest::showsAdviceUntilItIsEmpty() {
    setResult(*m_controller, failure(0x2005, 0));
    QVERIFY(label("resultAdvice")->isHidden());
    m_controller->setAdvice("Caf\xC3\xA9");
    QVERIFY(!label("resultAdvice")->isHidden());
    QCOMPARE(label("resultAdvice")->text(), QString::fromUtf8("Caf\xC3\xA9"));
    m_controller->setAdvice({});
    QVERIFY(label("resultAdvice")->isHidden());
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::ResultWindowControllerTest)
#include "ResultWindowControllerTest.moc"
